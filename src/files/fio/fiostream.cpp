#include "files/fio/fiostream.h"

#include <QIODevice>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace marlowen {

namespace {

struct OpenMode
{
    const char *stdio;
    QIODevice::OpenMode device;
};

OpenMode openModeOf(FioStream::Mode mode)
{
    switch (mode) {
    case FioStream::Mode::Write:
        return {"wb", QIODevice::WriteOnly | QIODevice::Truncate};
    case FioStream::Mode::Append:
        return {"ab", QIODevice::WriteOnly | QIODevice::Append};
    case FioStream::Mode::Read:
        break;
    }
    return {"rb", QIODevice::ReadOnly};
}

QString systemMessage(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

} // namespace

bool FioStream::_beginOpen()
{
    m_error.clear();
    clearReferences();
    return !_isOpen() || fail(QStringLiteral("Already open"));
}

bool FioStream::open(const QString &path, Mode mode)
{
    if (!_beginOpen())
        return false;
    m_file.reset(std::fopen(path.toLatin1().constData(), openModeOf(mode).stdio));
    return m_file != nullptr || fail(systemMessage(errno));
}

bool FioStream::open(QIODevice *device, Mode mode)
{
    if (!_beginOpen())
        return false;
    m_device = device;
    m_attached = false;
    if (device->open(openModeOf(mode).device))
        return true;
    _failIo();
    m_device = nullptr;
    return false;
}

bool FioStream::attach(QIODevice *device)
{
    if (!_beginOpen())
        return false;
    m_device = device;
    m_attached = true;
    return true;
}

bool FioStream::close()
{
    bool ok = true;
    if (m_file)
        ok = std::fclose(m_file.release()) == 0 || fail(systemMessage(errno));
    else if (!m_device)
        ok = _failIo();
    else if (!m_attached)
        m_device->close();
    m_device = nullptr;
    clearReferences();
    m_transforms.clear();
    return ok;
}

bool FioStream::seek(qint64 offset)
{
    if (!m_digests.empty() || !m_transforms.empty())
        return fail(QStringLiteral("Seek not allowed with LFSR or MD5"));
    if (m_device)
        return m_device->seek(offset) || fail(QStringLiteral("Invalid offset"));
    if (m_file && std::fseek(m_file.get(), static_cast<long>(offset), SEEK_SET) == 0)
        return true;
    return _failIo();
}

bool FioStream::checkEnd()
{
    if (!_isOpen())
        return _failIo();
    const bool atEnd = m_file ? std::fgetc(m_file.get()) == EOF : m_device->atEnd();
    return atEnd || fail(QStringLiteral("Extra data at end-of-file"));
}

bool FioStream::writeData(const void *bytes, int count)
{
    if (count < 0)
        return fail(QStringLiteral("Negative write"));
    if (count == 0)
        return true;
    const char *plain = static_cast<const char *>(bytes);
    for (const auto &digest : m_digests)
        digest->addData(QByteArrayView(plain, count));
    if (m_transforms.empty())
        return _put(plain, count);
    QByteArray scratch(plain, count);
    for (auto transform = m_transforms.rbegin(); transform != m_transforms.rend(); ++transform) {
        for (char &byte : scratch)
            byte = static_cast<char>((*transform)(static_cast<quint8>(byte)));
    }
    return _put(scratch.constData(), count);
}

bool FioStream::readData(void *bytes, int count)
{
    if (count < 0)
        return fail(QStringLiteral("Negative read"));
    if (count == 0) {
        _dump(nullptr, 0);
        return true;
    }
    char *plain = static_cast<char *>(bytes);
    if (!_isOpen())
        return _failIo();
    // The rest also follows a short read, so that the digests have seen every byte asked for.
    const bool whole = _get(plain, count);
    _dump(plain, count);
    for (const ByteTransform &transform : m_transforms) {
        for (int i = 0; i < count; ++i)
            plain[i] = static_cast<char>(transform(static_cast<quint8>(plain[i])));
    }
    for (const auto &digest : m_digests)
        digest->addData(QByteArrayView(plain, count));
    return whole;
}

bool FioStream::readBlock(QByteArray &bytes, qint64 count)
{
    constexpr qint64 step = 1 << 20;
    QByteArray read;
    while (read.size() < count) {
        const qint64 old = read.size();
        const qint64 next = std::min(step, count - old);
        read.resize(old + next);
        if (!readData(read.data() + old, static_cast<int>(next)))
            return false;
    }
    bytes = std::move(read);
    return true;
}

void FioStream::pushDigest()
{
    m_digests.push_back(std::make_unique<QCryptographicHash>(QCryptographicHash::Md5));
}

QByteArray FioStream::popDigest()
{
    if (m_digests.empty())
        return {};
    const QByteArray value = m_digests.back()->result();
    m_digests.pop_back();
    return value;
}

void FioStream::pushTransform(ByteTransform transform)
{
    m_transforms.push_back(std::move(transform));
}

bool FioStream::fail(const QString &message)
{
    if (m_error.isEmpty())
        m_error = message;
    return false;
}

bool FioStream::failCorrupted(const QString &appendix)
{
    return fail(QStringLiteral("Corrupted or not a recognized format.") + appendix);
}

QString FioStream::newerVersionMessage()
{
    return QStringLiteral("File was written by a newer version of this software.\n"
                          "Select 'Check For Updates' from the Help menu to upgrade.");
}

bool FioStream::_failIo()
{
    if (m_file)
        return fail(systemMessage(errno));
    if (!m_device)
        return fail(QStringLiteral("File not open"));
    const QString message = m_device->errorString();
    return fail(message.isEmpty() ? QStringLiteral("I/O Error") : message);
}

bool FioStream::_put(const char *bytes, int count)
{
    _dump(bytes, count);
    if (m_file && std::fwrite(bytes, static_cast<size_t>(count), 1, m_file.get()) == 1)
        return true;
    if (m_device && m_device->write(bytes, count) == count)
        return true;
    return _failIo();
}

bool FioStream::_get(char *bytes, int count)
{
    bool whole = false;
    if (m_file) {
        whole = std::fread(bytes, static_cast<size_t>(count), 1, m_file.get()) == 1;
        if (!whole)
            fail(QStringLiteral("Premature end-of-file"));
    } else {
        const qint64 got = m_device->read(bytes, count);
        whole = got == count;
        if (got <= 0)
            fail(QStringLiteral("Premature end-of-file"));
        else if (!whole)
            _failIo();
    }
    return whole;
}

void FioStream::_dump(const char *bytes, int count) const
{
    if (!m_debug)
        return;
    for (int i = 0; i < count; ++i)
        qDebug("%02x ", static_cast<unsigned>(static_cast<quint8>(bytes[i])));
    qDebug("\n");
}

} // namespace marlowen

#include "recovery/journalfile.h"

#include "files/safefile.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include <zlib.h>

#include <fcntl.h>
#include <unistd.h>

namespace marlowen {

namespace {

constexpr int64_t chunkBytes = 1 << 20;

} // namespace

JournalFile &JournalFile::operator=(JournalFile &&other) noexcept
{
    JournalFile taken(std::move(other));
    swap(taken);
    return *this;
}

void JournalFile::swap(JournalFile &other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_end, other.m_end);
    std::swap(m_newName, other.m_newName);
    m_path.swap(other.m_path);
    m_error.swap(other.m_error);
}

bool JournalFile::_open(const QString &path, int flags)
{
    close();
    m_path = QFile::encodeName(path);
    // A link in the place of the journal must not lead elsewhere.
    m_descriptor = open(m_path.constData(), flags | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    return m_descriptor >= 0 || _fail();
}

bool JournalFile::create(const QString &path)
{
    // Not truncated in place: a reader may still have the old file.
    if (unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT)
        return _fail();
    if (!_open(path, O_CREAT | O_EXCL))
        return false;
    m_newName = true;
    m_end = 0;
    const JournalHead head;
    if (!_write(&head, sizeof head))
        return false;
    m_end = sizeof head;
    return true;
}

bool JournalFile::continueAt(const QString &path, int64_t end)
{
    if (!_open(path, 0))
        return false;
    m_end = end;
    return ftruncate(m_descriptor, end) == 0 || _fail();
}

void JournalFile::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

bool JournalFile::append(RecordHead head, const QByteArray &meta, Parts data)
{
    head.metaBytes = static_cast<uint16_t>(meta.size());
    head.dataBytes = 0;
    for (const QByteArrayView part : data)
        head.dataBytes += static_cast<uint64_t>(part.size());
    QByteArray start(reinterpret_cast<const char *>(&head), sizeof head);
    start += meta;
    std::vector<QByteArrayView> parts{start};
    parts.insert(parts.end(), data.begin(), data.end());

    const int64_t old = m_end;
    uLong sum = crc32(0, nullptr, 0);
    bool good = isOpen();
    for (const QByteArrayView part : parts) {
        // In pieces that stay in the cache between the sum and the write.
        for (int64_t at = 0; good && at < part.size(); at += chunkBytes) {
            const int64_t count = std::min<int64_t>(chunkBytes, part.size() - at);
            sum = crc32(sum, reinterpret_cast<const Bytef *>(part.data()) + at,
                        static_cast<uInt>(count));
            good = _write(part.data() + at, count);
            m_end += good ? count : 0;
        }
    }
    const auto trailer = static_cast<uint32_t>(sum);
    if (good && _write(&trailer, sizeof trailer)) {
        m_end += int64_t{sizeof trailer};
        return true;
    }
    m_end = old;
    // Should even this fail, the torn record is found by its sum.
    if (isOpen() && ftruncate(m_descriptor, old) != 0)
        return false;
    return false;
}

bool JournalFile::appendFrom(const JournalFile &other, int64_t from, int64_t to)
{
    std::vector<char> buffer(
        static_cast<size_t>(std::min(chunkBytes, std::max<int64_t>(1, to - from))));
    while (from < to) {
        const auto want = static_cast<size_t>(std::min<int64_t>(chunkBytes, to - from));
        const ssize_t got = pread(other.m_descriptor, buffer.data(), want, from);
        if (got <= 0 || !_write(buffer.data(), got))
            return _fail();
        m_end += got;
        from += got;
    }
    return true;
}

bool JournalFile::_write(const void *bytes, int64_t count)
{
    const char *from = static_cast<const char *>(bytes);
    int64_t at = m_end;
    while (count > 0) {
        const ssize_t written = pwrite(m_descriptor, from, static_cast<size_t>(count), at);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return _fail();
        from += written;
        at += written;
        count -= written;
    }
    return true;
}

bool JournalFile::sync()
{
    if (!isOpen())
        return true;
    if (fdatasync(m_descriptor) != 0)
        return _fail();
    if (std::exchange(m_newName, false))
        syncName(QFile::decodeName(m_path));
    return true;
}

bool JournalFile::renameTo(const QString &path)
{
    const QByteArray target = QFile::encodeName(path);
    if (rename(m_path.constData(), target.constData()) != 0)
        return _fail();
    m_path = target;
    m_newName = true;
    return true;
}

bool JournalFile::_fail()
{
    m_error = qt_error_string(errno);
    return false;
}

} // namespace marlowen

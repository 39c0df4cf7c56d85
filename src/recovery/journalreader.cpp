#include "recovery/journalreader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <zlib.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marlowen {

JournalReader::State JournalReader::open(const QString &path)
{
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return errno == ENOENT ? State::Missing : State::Foreign;
    struct stat status
    {
    };
    const bool own =
        fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
    if (!own || !m_file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered,
                             QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return State::Foreign;
    }
    m_size = status.st_size;
    JournalHead found;
    const JournalHead expected;
    if (!_readRaw(&found, sizeof found) ||
        std::memcmp(found.name, expected.name, sizeof expected.name) != 0)
        return State::Foreign;
    return found == expected ? State::Readable : State::OtherVersion;
}

bool JournalReader::next()
{
    m_begin = m_first ? int64_t{sizeof(JournalHead)} : end();
    m_first = false;
    m_head = {};
    m_left = 0;
    if (!m_file.seek(m_begin) || !_readRaw(&m_head, sizeof m_head) ||
        m_head.mark != RecordHead::expectedMark)
        return false;
    const auto room = static_cast<uint64_t>(m_size - m_begin);
    if (m_head.dataBytes > room || m_head.bytes() > room)
        return false;
    m_meta.resize(m_head.metaBytes);
    if (!_readRaw(m_meta.data(), m_head.metaBytes))
        return false;
    m_sum = crc32(0, reinterpret_cast<const Bytef *>(&m_head), sizeof m_head);
    m_sum = crc32(m_sum, reinterpret_cast<const Bytef *>(m_meta.constData()), m_head.metaBytes);
    m_left = m_head.dataBytes;
    return true;
}

bool JournalReader::read(void *to, uint64_t bytes)
{
    // The sum of nothing at no address would begin anew.
    if (bytes == 0)
        return true;
    if (bytes > m_left || !_readRaw(to, bytes))
        return false;
    m_left -= bytes;
    m_sum = crc32_z(m_sum, static_cast<const Bytef *>(to), bytes);
    return true;
}

bool JournalReader::isWhole()
{
    char rest[4096];
    while (m_left > 0) {
        if (!read(rest, std::min<uint64_t>(m_left, sizeof rest)))
            return false;
    }
    uint32_t sum = 0;
    return _readRaw(&sum, sizeof sum) && sum == m_sum;
}

bool JournalReader::_readRaw(void *to, uint64_t bytes)
{
    return m_file.read(static_cast<char *>(to), static_cast<qint64>(bytes)) ==
           static_cast<qint64>(bytes);
}

} // namespace marlowen

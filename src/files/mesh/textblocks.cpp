#include "files/mesh/textblocks.h"

#include "files/mesh/textnumbers.h"

#include <algorithm>
#include <cstring>

namespace marlowen {

namespace {

constexpr size_t blockBytes = size_t{256} << 10;
constexpr size_t longestPiece = size_t{64} << 20;
/// Bytes behind a block: the line feed behind the end of the file, and what may be read.
constexpr size_t spareBytes = 1 + textSpareBytes;

} // namespace

TextBlocks::TextBlocks(QIODevice &device, Progress &progress, std::string_view separators)
    : m_device(device)
    , m_progress(progress)
    , m_separators(separators)
    , m_bytesTotal(device.isSequential() ? 0 : device.size())
{
}

/// Bytes of a buffer: a small file does not need a large one.
size_t TextBlocks::_usualBytes() const
{
    if (m_device.isSequential())
        return blockBytes;
    const auto total = static_cast<size_t>(std::max<qint64>(0, m_bytesTotal));
    return std::min(blockBytes, total + 2 * spareBytes);
}

bool TextBlocks::_readMore(std::vector<char> &buffer)
{
    if (m_filled + spareBytes >= buffer.size())
        buffer.resize(2 * buffer.size());
    const auto room = static_cast<qint64>(buffer.size() - m_filled - spareBytes);
    const qint64 got = m_device.read(buffer.data() + m_filled, room);
    m_failed = got < 0;
    m_atEnd = got <= 0;
    if (got <= 0)
        return false;
    m_filled += static_cast<size_t>(got);
    m_bytesRead += got;
    if (m_bytesTotal > 0)
        m_progress.advance(
            std::min(1.0, static_cast<double>(m_bytesRead) / static_cast<double>(m_bytesTotal)));
    return true;
}

size_t TextBlocks::_lastSeparator(const std::vector<char> &buffer, size_t from) const
{
    size_t at = m_filled;
    while (at > from && m_separators.find(buffer[at - 1]) == std::string_view::npos)
        --at;
    return at;
}

void TextBlocks::_dropOverlong(std::vector<char> &buffer)
{
    const char *const begin = buffer.data();
    const char *const end = begin + m_filled;
    const char *const separator = std::find_first_of(begin, end, m_separators.begin(), //
                                                     m_separators.end());
    const auto left = static_cast<size_t>(end - separator);
    std::memmove(buffer.data(), separator, left);
    m_filled = left;
    m_dropping = left == 0;
}

std::string_view TextBlocks::_cut(const std::vector<char> &buffer, size_t end)
{
    m_rest.assign(buffer.data() + end, buffer.data() + m_filled);
    return {buffer.data(), end};
}

std::string_view TextBlocks::next(std::vector<char> &buffer)
{
    buffer.resize(std::max({buffer.size(), _usualBytes(), m_rest.size() + spareBytes}));
    std::copy(m_rest.begin(), m_rest.end(), buffer.begin());
    m_filled = m_rest.size();
    m_rest.clear();
    size_t searched = 0;
    while (!m_atEnd && !m_progress.cancelled()) {
        if (!_readMore(buffer))
            break;
        if (m_dropping) {
            _dropOverlong(buffer);
            searched = 0;
        }
        const size_t end = _lastSeparator(buffer, searched);
        if (end > searched)
            return _cut(buffer, end);
        searched = m_filled;
        if (m_filled > longestPiece) {
            ++m_overlong;
            m_dropping = true;
            m_filled = searched = 0;
        }
    }
    if (m_filled == 0 || m_progress.cancelled() || m_failed)
        return {};
    buffer[m_filled] = '\n';
    return {buffer.data(), m_filled + 1};
}

} // namespace marlowen

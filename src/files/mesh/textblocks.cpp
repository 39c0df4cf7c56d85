#include "files/mesh/textblocks.h"

#include <algorithm>
#include <cstring>

namespace marlowen {

namespace {

constexpr size_t blockBytes = size_t{512} << 10;
constexpr size_t longestPiece = size_t{64} << 20;

} // namespace

TextBlocks::TextBlocks(QIODevice &device, Progress &progress, std::string_view separators)
    : m_device(device)
    , m_progress(progress)
    , m_separators(separators)
    , m_buffer(blockBytes)
    , m_bytesTotal(device.isSequential() ? 0 : device.size())
{
}

bool TextBlocks::_readMore()
{
    if (m_filled == m_buffer.size())
        m_buffer.resize(2 * m_buffer.size());
    // One byte stays free for the line feed behind the end of the file.
    const auto room = static_cast<qint64>(m_buffer.size() - m_filled);
    const qint64 got = m_device.read(m_buffer.data() + m_filled, room);
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

size_t TextBlocks::_lastSeparator(size_t from) const
{
    size_t at = m_filled;
    while (at > from && m_separators.find(m_buffer[at - 1]) == std::string_view::npos)
        --at;
    return at;
}

void TextBlocks::_dropOverlong()
{
    const char *const begin = m_buffer.data();
    const char *const end = begin + m_filled;
    const char *const separator = std::find_first_of(begin, end, m_separators.begin(), //
                                                     m_separators.end());
    const auto left = static_cast<size_t>(end - separator);
    std::memmove(m_buffer.data(), separator, left);
    m_filled = left;
    m_dropping = left == 0;
}

std::string_view TextBlocks::next()
{
    std::memmove(m_buffer.data(), m_buffer.data() + m_consumed, m_filled - m_consumed);
    m_filled -= m_consumed;
    m_consumed = 0;
    size_t searched = 0;
    while (!m_atEnd && !m_progress.cancelled()) {
        if (!_readMore())
            break;
        if (m_dropping) {
            _dropOverlong();
            searched = 0;
        }
        const size_t end = _lastSeparator(searched);
        if (end > searched) {
            m_consumed = end;
            return {m_buffer.data(), end};
        }
        searched = m_filled;
        if (m_filled > longestPiece) {
            ++m_overlong;
            m_dropping = true;
            m_filled = searched = 0;
        }
    }
    if (m_filled == 0 || m_progress.cancelled() || m_failed)
        return {};
    m_buffer.resize(std::max(m_buffer.size(), m_filled + 1));
    m_buffer[m_filled] = '\n';
    m_consumed = ++m_filled;
    return {m_buffer.data(), m_consumed};
}

} // namespace marlowen

#pragma once

#include "base/progress.h"

#include <QIODevice>

#include <string_view>
#include <vector>

namespace marlowen {

/// Reads a text in large blocks that end behind a separator, so that no piece between separators is
/// ever cut. A piece longer than 64 MiB is left out and counted. Behind every block lie
/// textSpareBytes (textnumbers.h) more that may be read.
class TextBlocks
{
public:
    /// `separators` is what a block may end with, '\n' among it. The device is open for reading;
    /// its size, where it has one, gives the progress.
    TextBlocks(QIODevice &device, Progress &progress, std::string_view separators);

    /// The next block, never empty, its last character a separator (a line feed is added to the end
    /// of the file). Empty at the end, after a failed read and when the user cancelled. It lies in
    /// the buffer, whose old contents are lost and which grows as needed.
    std::string_view next(std::vector<char> &buffer);

    bool failed() const { return m_failed; }
    /// Whether the file ended before its size.
    bool cutShort() const { return m_atEnd && !m_failed && m_bytesRead < m_bytesTotal; }
    bool cancelled() const { return m_progress.cancelled(); }
    qint64 overlongPieces() const { return m_overlong; }
    /// Bytes that were handed out or left out so far, and how many the file has (0: not known).
    qint64 bytesRead() const { return m_bytesRead; }
    qint64 bytesTotal() const { return m_bytesTotal; }

private:
    size_t _usualBytes() const;
    bool _readMore(std::vector<char> &buffer);
    void _dropOverlong(std::vector<char> &buffer);
    size_t _lastSeparator(const std::vector<char> &buffer, size_t from) const;
    std::string_view _cut(const std::vector<char> &buffer, size_t end);

    QIODevice &m_device;
    Progress &m_progress;
    std::string_view m_separators;
    std::vector<char> m_rest; ///< of the last buffer, behind the block
    size_t m_filled = 0;      ///< bytes in the buffer
    qint64 m_bytesRead = 0;
    qint64 m_bytesTotal = 0;
    qint64 m_overlong = 0;
    bool m_atEnd = false;
    bool m_failed = false;
    bool m_dropping = false; ///< inside a piece that is left out
};

} // namespace marlowen

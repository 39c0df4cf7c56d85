#pragma once

#include "base/progress.h"

#include <QIODevice>

#include <string_view>
#include <vector>

namespace marlowen {

/// Reads a text in large blocks that end behind a separator, so that no piece between separators is
/// ever cut. A piece longer than 64 MiB is left out and counted.
class TextBlocks
{
public:
    /// `separators` is what a block may end with, '\n' among it. The device is open for reading;
    /// its size, where it has one, gives the progress.
    TextBlocks(QIODevice &device, Progress &progress, std::string_view separators);

    /// The next block, never empty, its last character a separator (a line feed is added to the end
    /// of the file). Empty at the end, after a failed read and when the user cancelled. Valid until
    /// the next call.
    std::string_view next();

    bool failed() const { return m_failed; }
    bool cancelled() const { return m_progress.cancelled(); }
    qint64 overlongPieces() const { return m_overlong; }
    /// Bytes that were handed out or left out so far, and how many the file has (0: not known).
    qint64 bytesRead() const { return m_bytesRead; }
    qint64 bytesTotal() const { return m_bytesTotal; }

private:
    bool _readMore();
    void _dropOverlong();
    size_t _lastSeparator(size_t from) const;

    QIODevice &m_device;
    Progress &m_progress;
    std::string_view m_separators;
    std::vector<char> m_buffer;
    size_t m_filled = 0;   ///< bytes in the buffer
    size_t m_consumed = 0; ///< of them, handed out by the last next()
    qint64 m_bytesRead = 0;
    qint64 m_bytesTotal = 0;
    qint64 m_overlong = 0;
    bool m_atEnd = false;
    bool m_failed = false;
    bool m_dropping = false; ///< inside a piece that is left out
};

} // namespace marlowen

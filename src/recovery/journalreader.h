#pragma once

#include "recovery/journalrecord.h"

#include <QFile>

namespace marlowen {

/// The reading end of a journal file, record by record. Checks everything: a record that is
/// cut short, longer than the file or whose sum differs ends the journal before it.
class JournalReader
{
public:
    enum class State {
        Readable,
        Missing,
        OtherVersion, ///< of a version or a machine that writes it differently: not to be touched
        Foreign,      ///< of another user, or no journal at all: not to be touched
    };
    /// Stands before the first record when the file is readable.
    State open(const QString &path);

    /// Goes to the next record, behind its meta values; false at the end. A record that was not
    /// read is skipped unchecked.
    bool next();
    const RecordHead &head() const { return m_head; }
    const QByteArray &meta() const { return m_meta; }
    /// Reads the next bytes of the record's data; false when it has fewer.
    bool read(void *to, uint64_t bytes);
    /// Reads the rest of the record and compares the checksum.
    bool isWhole();

    /// Where the record begins, and where it ends.
    int64_t begin() const { return m_begin; }
    int64_t end() const { return m_begin + static_cast<int64_t>(m_head.bytes()); }
    int64_t size() const { return m_size; }

private:
    bool _readRaw(void *to, uint64_t bytes);

    QFile m_file;
    int64_t m_size = 0;
    int64_t m_begin = 0;
    RecordHead m_head;
    QByteArray m_meta;
    uint64_t m_left = 0; ///< of the data
    unsigned long m_sum = 0;
    bool m_first = true;
};

} // namespace marlowen

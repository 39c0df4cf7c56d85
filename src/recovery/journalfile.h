#pragma once

#include "recovery/journalrecord.h"

#include <QByteArrayView>
#include <QString>

#include <span>

namespace marlowen {

/// The writing end of a journal file. Not tied to a thread.
class JournalFile
{
public:
    using Parts = std::span<const QByteArrayView>;

    JournalFile() = default;
    ~JournalFile() { close(); }
    JournalFile(JournalFile &&other) noexcept { swap(other); }
    JournalFile &operator=(JournalFile &&other) noexcept;
    void swap(JournalFile &other) noexcept;

    /// Makes an empty journal that only the user can read; replaces a file of that name.
    bool create(const QString &path);
    /// Opens a journal whose good part ends at `end`; what follows is cut off.
    bool continueAt(const QString &path, int64_t end);
    void close();
    bool isOpen() const { return m_descriptor >= 0; }

    /// Writes a whole record or does not change the file. Fills in the head's byte counts.
    bool append(RecordHead head, const QByteArray &meta, Parts data = {});
    /// Copies bytes of another journal to the end.
    bool appendFrom(const JournalFile &other, int64_t from, int64_t to);
    /// Waits until the written data is on the disk, with the name of the file when that is new.
    bool sync();
    /// Replaces the file `path`.
    bool renameTo(const QString &path);

    int64_t size() const { return m_end; }
    /// Why the last call failed.
    QString error() const { return m_error; }

private:
    bool _open(const QString &path, int flags);
    bool _write(const void *bytes, int64_t count);
    bool _fail();

    int m_descriptor = -1;
    int64_t m_end = 0;
    bool m_newName = false; ///< the folder's entry may not be on the disk yet
    QByteArray m_path;
    QString m_error;
};

} // namespace marlowen

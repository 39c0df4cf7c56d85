#pragma once

#include <QString>

#include <optional>

namespace marlowen {

/// The folder "recovery" inside the data folder.
QString recoveryRoot();

/// The folder of one window's journal, locked for the lifetime of this object. The system
/// releases the lock when the process ends, in any way.
class RecoveryFolder
{
public:
    RecoveryFolder() = default;
    RecoveryFolder(RecoveryFolder &&other) noexcept;
    RecoveryFolder &operator=(RecoveryFolder &&other) noexcept;
    ~RecoveryFolder();

    /// Makes a new folder below `root`, which is made too; only the user can look into both.
    /// Nothing when that fails.
    static std::optional<RecoveryFolder> make(const QString &root);
    /// Locks the folder that a window has left. Nothing when another one has it, or it is not the
    /// user's.
    static std::optional<RecoveryFolder> take(const QString &path);

    QString path() const { return m_path; }
    QString journal() const;
    /// Deletes the folder with the files of a journal in it, and gives the lock back.
    void discard();

private:
    RecoveryFolder(QString path, int lock)
        : m_path(std::move(path))
        , m_lock(lock)
    {
    }

    QString m_path;
    int m_lock = -1;
};

} // namespace marlowen

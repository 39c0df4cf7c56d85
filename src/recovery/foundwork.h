#pragma once

#include "base/progress.h"
#include "base/result.h"
#include "recovery/recoveryfolder.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"

#include <QDateTime>
#include <QImage>
#include <QList>
#include <QString>

#include <memory>

namespace marlowen {

/// Unsaved work of an ended window, as far as it is known without reading all of it.
struct FoundWork
{
    QString folder;
    QString file;   ///< where the relief came from; empty for a new one
    QDateTime time; ///< of the last step
    int steps = 0;  ///< since the relief was opened or saved
};

/// What the windows that are gone have left.
struct WorkSearch
{
    QList<FoundWork> found; ///< newest first
    int ofOtherVersion = 0; ///< left alone
    int unreadable = 0;     ///< not even their beginning could be read; removed
};

/// Looks below `root`. Folders without anything to restore are removed; those in use or of another
/// user are left alone.
WorkSearch searchWork(const QString &root);
inline QList<FoundWork> findWork(const QString &root)
{
    return searchWork(root).found;
}

/// Work brought back.
struct RecoveredWork
{
    RecoveryFolder folder; ///< locked
    std::unique_ptr<Relief> relief;
    SculptUndo history; ///< the steps of the journal; refers to the relief
    QString file;
    int64_t journalEnd = 0; ///< where the last whole step ends in the journal
    bool damaged = false;   ///< steps after that one are lost
};

/// Restores work up to its last whole step; the journal is not changed. Fails when another
/// window has it meanwhile, when not even its beginning can be read, or when memory is short. A
/// cancelled progress is a failure without a sentence.
Result<RecoveredWork> restoreWork(const QString &folder, Progress &progress);

/// A small lit picture of work after its last step; null when it cannot be read. Takes no
/// lock and is not tied to a thread.
QImage foundThumbnail(const QString &folder, int side);

/// Deletes work that no window has. False when one has it or when it cannot be deleted.
bool discardWork(const QString &folder);

} // namespace marlowen

#pragma once

#include <QDateTime>
#include <QString>

namespace marlowen {

/// Deletes every "*.log" in the folder that was created more than a day before `now`. Only the
/// birth time counts; a file whose file system keeps none stays. Files that cannot be deleted stay
/// without a word.
void scrubOldLogs(const QString &folder, const QDateTime &now);

/// Empties every folder "tmp_*" in the folder that was created more than a day before `now` of its
/// entries "stltmp*" and removes it when nothing else is left in it. Links and files called "tmp_*"
/// are left alone.
void cleanTemporaryFolders(const QString &folder, const QDateTime &now);

} // namespace marlowen

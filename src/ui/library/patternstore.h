#pragma once

#include "base/result.h"
#include "files/patternfile.h"

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

namespace marlowen {

class Progress;
class Relief;

/// A folder that holds patterns.
struct PatternFolder
{
    QString name; ///< as people see it
    QString path;
    bool builtIn = false; ///< its patterns cannot be changed
};

/// A pattern of the library.
struct PatternEntry
{
    QString name; ///< that of its file, without the ending
    QString path;
    bool builtIn = false;
    qint64 changed = 0; ///< when the file was, in milliseconds

    bool operator==(const PatternEntry &) const = default;
};

/// The folder "patterns" in the data folder, for the user's patterns; made when it is missing.
QString patternFolder();
/// Where the patterns that come with the program are installed; it may be missing.
QString builtInPatternFolder();
/// The built-in folder, the user's, and the folders in that one, some levels deep and at most 200.
QList<PatternFolder> patternFolders();
/// The patterns of one folder by name; those of all folders for an empty path. A folder that cannot
/// be read has none.
QList<PatternEntry> patternEntries(const QString &folder);

/// A title, the name of the user and the unit (an index into lengthUnits) that the window shows.
PatternAttributes attributesOfUser(const QString &path, int unit);

/// A folder in the user's one. Fails with "New Folder Failed".
Result<QString> addPatternFolder(const QString &name);
/// Copies a pattern file into the folder, under another name where its own is taken, and returns
/// the copy's path. Fails with "Add Pattern Failed" when it is not a pattern or cannot be copied.
Result<QString> addPatternFile(const QString &path, const QString &folder);
/// A pattern to be written into a folder of the library.
struct NewPattern
{
    QString name;
    QString folder;
    int unit = 0;
};
/// Writes the relief, or its selection alone when it has one, as a pattern and returns its path.
/// Fails with "Add Pattern Failed", or with "Save Failed" as savePattern().
Result<QString> addReliefPattern(const Relief &relief, const NewPattern &pattern,
                                 Progress &progress);
/// Renames the file and returns its new path; the title inside stays. Fails with "Rename Failed",
/// also when the name is taken or is not a valid file name.
Result<QString> renamePattern(const QString &path, const QString &name);
/// Moves the file to the desktop's trash. Fails with "Remove Failed".
Outcome removePattern(const QString &path);

/// The bounding box of the selected cells; empty without any.
QRect selectedBox(const Relief &relief);
/// The selected cells in that box, the others empty; the whole relief without a
/// selection, and no cells when nothing is selected.
FloatGrid selectedHeights(const Relief &relief);

} // namespace marlowen

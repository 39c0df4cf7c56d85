#pragma once

#include "base/result.h"
#include "files/exportoptions.h"
#include "relief/grid/relief.h"

#include <QImage>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <span>

namespace marlowen {

class Progress;
enum class MeshFormat;

/// What a file becomes when it is opened.
enum class OpensAs {
    Nothing, ///< the format is only written
    Relief,  ///< `load` makes the relief
    Model,   ///< a mesh, which is oriented and rasterised before it is a relief
    Picture, ///< an open import of its grey levels; the kind of picture is recognised by its
             ///< contents
};

/// One relief to be written to a file.
struct ExportJob
{
    const Relief &relief;
    const QString &path;
    ExportOptions options = {};
    Progress *progress = nullptr; ///< may be null
    QString author = {};          ///< only for a format that takes one; may be empty
};

/// One row a file name ending. The open filter, drops, the recent files, scripts, the command line
/// and its help read these rows; a new format is a reader or writer and a row.
struct Format
{
    const char *ending; ///< with its dot, lower case
    const char *label;  ///< "STL mesh"
    OpensAs opensAs;
    bool inWindow; ///< the window opens it too
    /// Only for OpensAs::Relief.
    Result<std::unique_ptr<Relief>> (*load)(const QString &path) = nullptr;
    /// Null: only read. The value is a line about the result; it may be empty.
    Result<QString> (*save)(const ExportJob &job) = nullptr;
    const char *written = "";   ///< what `save` writes, for the help
    unsigned exportOptions = 0; ///< ExportOption bits
    bool takesAuthor = false;   ///< it can say who made the relief
    /// At most so many pixels wide and high; a null image on failure. May be null.
    QImage (*thumbnail)(const QString &path, int side) = nullptr;
    /// The file's attributes other than its relief, as texts; empty when it cannot be read. May be
    /// null.
    QJsonObject (*attributes)(const QString &path) = nullptr;
};

std::span<const Format> formats();

/// The row of a file name, whose ending counts in any case; null when there is none.
const Format *formatOf(const QString &path);
/// The rows of the formats that commands of the window write.
const Format &workspaceFormat();
const Format &patternFormat();
const Format &meshFormat(MeshFormat format);
/// Whether the name is a workspace's, which Save writes again without asking.
bool isWorkspace(const QString &path);
/// "*.scp", "*.jpg", ...: what the window opens, for file dialogs.
QStringList openPatterns();
/// The endings that can be written: ".scp", ".stl", ...
QStringList exportEndings();
/// All that some format takes, as ExportOption bits.
unsigned knownExportOptions();

/// Writes the relief by the ending of the name. Fails with "Invalid File" when the ending cannot be
/// written, or when an option is set that the format does not take, and as the writers do.
Result<QString> exportFile(const ExportJob &job);

} // namespace marlowen

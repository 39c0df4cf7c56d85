#pragma once

#include "base/progress.h"
#include "base/result.h"
#include "import/importsettings.h"
#include "relief/grid/relief.h"

#include <QJsonObject>
#include <QString>

#include <memory>

namespace marlowen {

/// A failure as one line: the sentence and, in brackets, the reason behind it.
QString oneLine(const Failure &failure);

/// The failure of a file, its name in front of the sentence.
Failure aboutFile(const QString &path, const Failure &failure);

/// Opens any file the program reads, told by its ending, as the window would: an image leaves its
/// import open. A float height map becomes heights and reference layer, with the range of its
/// values. The failure names the file.
Result<std::unique_ptr<Relief>> openFile(const QString &path, const ImportSettings &settings);

/// Writes a relief by the ending of the name: ".scp", ".stl", ".pfm", ".png". `quality` is empty
/// for full resolution. The failure names the file.
Outcome exportFile(const Relief &relief, const QString &path, const QString &quality,
                   Progress &progress);
/// Whether exportFile() knows the ending; when it does not, nothing is worth computing.
Outcome checkExport(const QString &path);

/// What a relief is, as one JSON object: size, Z scale, range, lowest and highest height, selection
/// flag.
QJsonObject describe(const Relief &relief);

} // namespace marlowen

#pragma once

#include "base/result.h"
#include "files/formats.h"
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

/// As openRelief(), without what image decoders print. The failure names the file.
Result<std::unique_ptr<Relief>> openFile(const QString &path, const ImportSettings &settings);

/// As exportFile(); prints what the writer has to say on standard error. The failure names the
/// file.
Outcome writeFile(const ExportJob &job);

/// Why import settings do not fit a file.
QString notImported();

/// What a relief is, as one JSON object: size, Z scale, range, lowest and highest height, selection
/// flag.
QJsonObject describe(const Relief &relief);

} // namespace marlowen

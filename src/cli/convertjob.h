#pragma once

#include "base/result.h"
#include "cli/modelfiles.h"
#include "files/exportoptions.h"
#include "import/importsettings.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace marlowen {

class Progress;

/// One conversion: open, import, resize, scale, write.
struct ConvertJob
{
    QString input;
    QString output;
    ImportSettings settings;
    bool settingsGiven = false;
    ModelWish model;
    std::optional<QSize> size;
    std::optional<double> zScale;
    ExportOptions exportOptions;
    QString author; ///< of a pattern
};

/// The job described by the arguments after "convert"; the failure names the error in them.
Result<ConvertJob> parseConvert(const QStringList &arguments);

Outcome runConvert(const ConvertJob &job, Progress &progress);

/// The options of "convert", one line each, for the help.
QString convertOptionsHelp();
/// What "convert" reads and writes, one line a kind of file, for the help.
QString formatsHelp();

} // namespace marlowen

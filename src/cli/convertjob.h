#pragma once

#include "base/result.h"
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
    std::optional<QSize> size;
    std::optional<double> zScale;
    QString quality;
};

/// The job that the arguments behind "convert" describe; the failure says what is wrong with them.
Result<ConvertJob> parseConvert(const QStringList &arguments);

Outcome runConvert(const ConvertJob &job, Progress &progress);

/// One line an option, for the help.
QString convertOptionsHelp();

} // namespace marlowen

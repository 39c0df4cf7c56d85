#include "import/openfile.h"

#include "files/formats.h"
#include "import/imageimport.h"
#include "import/importsource.h"
#include "import/mesh/openmodel.h"

namespace marlowen {

namespace {

Failure unknownEnding()
{
    return {QStringLiteral("Invalid File"),
            QStringLiteral("the file name has no ending that can be opened")};
}

} // namespace

Result<std::unique_ptr<Relief>> openRelief(const QString &path, const ImportSettings &settings)
{
    const Format *format = formatOf(path);
    if (!format || format->opensAs == OpensAs::Nothing)
        return unknownEnding();
    if (format->opensAs == OpensAs::Picture)
        return importImage(path, settings);
    if (format->opensAs == OpensAs::Model)
        return Failure{QStringLiteral("Invalid File"),
                       QStringLiteral("a mesh must be oriented before it is a relief")};
    return format->load(path);
}

QString importNote(const Relief &relief)
{
    const auto *source = dynamic_cast<const ImportSource *>(relief.source());
    return source ? source->note : QString();
}

bool takesImportSettings(const QString &path)
{
    const Format *format = formatOf(path);
    return format && (format->opensAs == OpensAs::Picture || opensAsModel(path));
}

} // namespace marlowen

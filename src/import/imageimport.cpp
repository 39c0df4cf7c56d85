#include "import/imageimport.h"

#include "files/safefile.h"
#include "import/importsource.h"
#include "import/pipeline.h"

#include <algorithm>
#include <new>
#include <utility>

namespace marlowen {

namespace {

std::unique_ptr<Relief> reliefOf(GreyPicture grey, const ImportSettings &settings)
{
    const Padding padding = paddingFor(grey.values);
    FloatGrid values = padded(std::move(grey.values), padding);
    ImportSettings opened = settings;
    if (std::exchange(opened.proposeDepth, false))
        opened.depth = std::min(values.width, values.height) / 10.0;
    auto source = std::make_unique<ImportSource>(std::move(values), opened);
    source->isPicture = true;
    source->note = grey.note;
    return std::make_unique<Relief>(std::move(source));
}

} // namespace

Result<std::unique_ptr<Relief>> importImage(const QString &path, const ImportSettings &settings)
{
    try {
        Result<GreyPicture> grey = readGreyPicture(path);
        if (!grey)
            return grey.failure();
        return reliefOf(grey.take(), settings);
    } catch (const std::bad_alloc &) {
        return openFailed(QStringLiteral("the picture is too large for the memory"));
    }
}

} // namespace marlowen

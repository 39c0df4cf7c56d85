#pragma once

#include "base/result.h"
#include "files/pictures/picturefile.h"
#include "import/importsettings.h"
#include "relief/grid/relief.h"

#include <QString>

#include <memory>

namespace marlowen {

/// Opens a picture as a relief whose import is open: its source is an ImportSource with these
/// settings. Fails as readGreyPicture() does, and when memory is short.
Result<std::unique_ptr<Relief>> importImage(const QString &path, const ImportSettings &settings);

} // namespace marlowen

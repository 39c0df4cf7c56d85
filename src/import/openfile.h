#pragma once

#include "base/result.h"
#include "import/importsettings.h"
#include "relief/grid/relief.h"

#include <QString>

#include <memory>

namespace marlowen {

/// Opens any file that has a row in the format table, but for meshes, which openModel() reads. A
/// picture leaves its import open, with these settings; other files take none. Fails with "Invalid
/// File" when the ending is not one that can be opened, and as the readers do.
Result<std::unique_ptr<Relief>> openRelief(const QString &path, const ImportSettings &settings);

/// One line for a person about how the file was read; empty when there is nothing to say.
QString importNote(const Relief &relief);

/// Whether files of this name are imported, so that import settings apply to them.
bool takesImportSettings(const QString &path);

} // namespace marlowen

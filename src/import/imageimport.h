#pragma once

#include "base/result.h"
#include "import/importsettings.h"
#include "relief/grid/floatgrid.h"
#include "relief/grid/relief.h"

#include <QImage>
#include <QString>

#include <memory>

namespace marlowen {

/// Opens an image (".jpg", ".jpeg", ".png", ".bmp", recognised by its contents) as a relief whose
/// import is open: its source is an ImportSource with these settings. Fails with "Open Failed" /
/// "Error! File Open Failed".
Result<std::unique_ptr<Relief>> importImage(const QString &path, const ImportSettings &settings);

/// Reads an image file, recognised by its contents, with its EXIF orientation applied. Fails with
/// "Open Failed" / "Error! File Open Failed" also when the file lacks its end. Throws
/// std::bad_alloc.
Result<QImage> readWholeImage(const QString &path);

/// Grey level 0..255 of every pixel, (11 red + 16 green + 5 blue) / 32 in integers, row 0 at the
/// top. Alpha is not looked at.
FloatGrid greyGrid(const QImage &image);

} // namespace marlowen

#pragma once

#include "base/result.h"
#include "files/pictures/picturegrid.h"

#include <QString>

namespace marlowen {

/// Reads the first page of a TIFF as grey values, row 0 at the top: strips or tiles, either byte
/// order, any compression and colours that libtiff supports. 16 bits a channel keep them: grey =
/// (11 red + 16 green + 5 blue) / 32 in reals, 65535 becoming 255.0. Floats stay as they are, those
/// that are not finite become 0. Other pictures are read as 8 bits a channel, whole numbers. The
/// orientation counts; alpha does not. Large pictures are averaged down as PictureGrid does. Fails
/// with "Open Failed" when the file is damaged or cut short. Throws std::bad_alloc.
Result<GreyPicture> readTiffGrey(const QString &path);

} // namespace marlowen

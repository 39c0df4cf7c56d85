#include "files/filethumbnail.h"

#include "files/formats.h"

namespace marlowen {

QImage fileThumbnail(const QString &path, int side)
{
    const Format *format = formatOf(path);
    return format && format->thumbnail ? format->thumbnail(path, side) : QImage();
}

} // namespace marlowen

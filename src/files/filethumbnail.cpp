#include "files/filethumbnail.h"

#include "files/formats.h"

#include <QFileInfo>

namespace marlowen {

QImage fileThumbnail(const QString &path, int side)
{
    const Format *format = formatOf(path);
    // A pipe or a device would hold up the window.
    return format && format->thumbnail && QFileInfo(path).isFile() ? format->thumbnail(path, side)
                                                                   : QImage();
}

} // namespace marlowen

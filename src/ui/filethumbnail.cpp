#include "ui/filethumbnail.h"

#include "files/boundedimage.h"
#include "files/filetypes.h"
#include "files/workspacethumbnail.h"

namespace marlowen {

QImage fileThumbnail(const QString &path, int side)
{
    switch (fileKindOf(path)) {
    case FileKind::Workspace:
        return workspaceThumbnail(path, side);
    case FileKind::Image:
        return readImageWithin(path, side);
    default:
        return {};
    }
}

} // namespace marlowen

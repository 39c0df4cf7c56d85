#include "ui/filethumbnail.h"

#include "files/filetypes.h"
#include "files/workspacethumbnail.h"

#include <QImageReader>

namespace {

QImage _imageThumbnail(const QString &path, int side)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    if (size.width() > side || size.height() > side)
        reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}

} // namespace

QImage fileThumbnail(const QString &path, int side)
{
    switch (fileKindOf(path)) {
    case FileKind::Workspace:
        return workspaceThumbnail(path, side);
    case FileKind::Image:
        return _imageThumbnail(path, side);
    default:
        return {};
    }
}

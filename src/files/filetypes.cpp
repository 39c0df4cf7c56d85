#include "files/filetypes.h"

namespace marlowen {

const FileType *fileTypeOf(const QString &path)
{
    for (const FileType &type : fileTypes) {
        if (path.endsWith(QLatin1String(type.extension), Qt::CaseInsensitive))
            return &type;
    }
    return nullptr;
}

FileKind fileKindOf(const QString &path)
{
    const FileType *type = fileTypeOf(path);
    return type ? type->kind : FileKind::Unknown;
}

} // namespace marlowen

#include "files/pictures/picturekind.h"

#include <QByteArray>
#include <QIODevice>

namespace marlowen {
namespace {

struct Signature
{
    QByteArrayView bytes;
    PictureKind kind;
};

constexpr Signature signatures[] = {
    {"\x89PNG\r\n\x1a\n", PictureKind::Png},
    {"\xFF\xD8", PictureKind::Jpeg},
    {"BM", PictureKind::Bmp},
    {QByteArrayView("II*\0", 4), PictureKind::Tiff},
    {QByteArrayView("MM\0*", 4), PictureKind::Tiff},
    {QByteArrayView("II+\0", 4), PictureKind::Tiff},
    {QByteArrayView("MM\0+", 4), PictureKind::Tiff},
};

} // namespace

PictureKind pictureKindOf(QIODevice &device)
{
    const QByteArray start = device.peek(8);
    for (const Signature &signature : signatures) {
        if (start.startsWith(signature.bytes))
            return signature.kind;
    }
    return PictureKind::None;
}

const char *readerFormat(PictureKind kind)
{
    switch (kind) {
    case PictureKind::Png:
        return "png";
    case PictureKind::Jpeg:
        return "jpeg";
    case PictureKind::Bmp:
        return "bmp";
    default:
        return nullptr;
    }
}

QString tooManyPixels()
{
    return QStringLiteral("the picture has more than 250 million pixels");
}

} // namespace marlowen

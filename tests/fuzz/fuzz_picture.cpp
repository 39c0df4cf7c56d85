#include "fuzzinput.h"
#include "import/imageimport.h"

#include <QImageReader>

using namespace marlowen;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr qint64 mostPixels = 1 << 20; // larger ones are only slow
    const QString path = fuzz::fileOf(fuzz::bytesOf(data, size), ".png");
    const QSize pixels = QImageReader(path).size();
    if (static_cast<qint64>(pixels.width()) * pixels.height() <= mostPixels)
        importImage(path, {});
    return 0;
}

#include "files/mesh/stlreader.h"
#include "fuzzinput.h"
#include "meshcheck.h"

#include <QBuffer>

using namespace marlowen;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes = fuzz::bytesOf(data, size);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    Progress silent;
    fuzz::checkMesh(readStl(buffer, silent).mesh);
    return 0;
}

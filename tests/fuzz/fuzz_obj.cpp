#include "files/mesh/objfilereader.h"
#include "fuzzinput.h"
#include "meshcheck.h"

#include <QBuffer>

using namespace marlowen;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using Indices = ObjFileReader::RelativeIndices;
    QByteArray bytes = fuzz::bytesOf(data, size);
    for (const Indices indices : {Indices::Literal, Indices::AsOtherPrograms}) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        Progress silent;
        ObjFileReader reader(indices);
        reader.read(buffer, silent);
        fuzz::checkMesh(reader.takeMesh());
    }
    return 0;
}

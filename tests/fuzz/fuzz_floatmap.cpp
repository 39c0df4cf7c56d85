#include "files/heightmaps.h"
#include "fuzzinput.h"

using namespace marlowen;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    loadHeightMap(fuzz::fileOf(fuzz::bytesOf(data, size), ".pfm"));
    return 0;
}

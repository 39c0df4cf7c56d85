#include "files/workspacefile.h"
#include "files/workspacethumbnail.h"
#include "fuzzinput.h"

using namespace marlowen;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = fuzz::fileOf(fuzz::bytesOf(data, size), ".scp");
    loadWorkspace(path);
    workspaceThumbnail(path, 16);
    return 0;
}

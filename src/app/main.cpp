#include "app/startup.h"

#include <malloc.h>

using namespace marlowen;

namespace {

/// Keeps what a frame or a stroke frees for the next one: without this the C library hands large
/// blocks back to the system at once and every new one is faulted in page by page.
void keepFreedMemory()
{
    constexpr int largestHeapBlock = 256 << 20; // the frame of the largest screens, with room
    constexpr int keptAtTop = 512 << 20;
    mallopt(M_MMAP_THRESHOLD, largestHeapBlock);
    mallopt(M_TRIM_THRESHOLD, keptAtTop);
}

} // namespace

int main(int argc, char **argv)
{
    keepFreedMemory();
    return runMarlowen(argc, argv);
}

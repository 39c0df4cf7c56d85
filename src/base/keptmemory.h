#pragma once

#ifdef __linux__
#include <malloc.h>
#endif

namespace marlowen {

/// Keeps what a frame, a stroke or a file frees for the next one: without this the C library hands
/// large blocks back to the system at once and every new one is faulted in page by page. For the
/// whole process, to be called at its start.
inline void keepFreedMemory()
{
#ifdef __linux__
    constexpr int largestHeapBlock = 256 << 20; // the frame of the largest screens, with room
    constexpr int keptAtTop = 512 << 20;
    mallopt(M_MMAP_THRESHOLD, largestHeapBlock);
    mallopt(M_TRIM_THRESHOLD, keptAtTop);
#endif
}

} // namespace marlowen

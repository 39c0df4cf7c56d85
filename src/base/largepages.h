#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace marlowen {

/// Memory for arrays of many megabytes: asks the system for large pages, so that filling fresh
/// memory does not cost a fault every 4 KiB.

inline constexpr size_t largePageBytes = size_t{2} << 20;

/// To be called before the memory is first written to. A wish: without it pages are small.
inline void wishLargePages([[maybe_unused]] void *memory, [[maybe_unused]] size_t bytes)
{
#ifdef __linux__
    const auto start = reinterpret_cast<uintptr_t>(memory);
    const uintptr_t first = (start + largePageBytes - 1) / largePageBytes * largePageBytes;
    const uintptr_t end = (start + bytes) / largePageBytes * largePageBytes;
    if (first < end)
        madvise(reinterpret_cast<void *>(first), end - first, MADV_HUGEPAGE);
#endif
}

/// A vector's allocator that wishes so; large arrays begin with a page.
template <typename T>
struct LargePageAllocator
{
    using value_type = T;

    LargePageAllocator() = default;
    template <typename U>
    LargePageAllocator(const LargePageAllocator<U> &)
    {
    }

    T *allocate(size_t count)
    {
        if (count > (size_t(-1) - largePageBytes) / sizeof(T))
            throw std::bad_array_new_length();
        const size_t bytes = count * sizeof(T);
        const size_t whole = (bytes + largePageBytes - 1) / largePageBytes * largePageBytes;
        const bool large = bytes >= 2 * largePageBytes;
        void *memory = large ? std::aligned_alloc(largePageBytes, whole) : std::malloc(bytes);
        if (!memory)
            throw std::bad_alloc();
        if (large)
            wishLargePages(memory, whole);
        return static_cast<T *>(memory);
    }
    void deallocate(T *memory, size_t) { std::free(memory); }

    bool operator==(const LargePageAllocator &) const { return true; }
};

template <typename T>
using LargeVector = std::vector<T, LargePageAllocator<T>>;

} // namespace marlowen

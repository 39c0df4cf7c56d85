#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <vector>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace marlowen {

/// Memory for arrays of many megabytes: asks the system for large pages, so that filling fresh
/// memory does not cost a fault every 4 KiB. Small arrays lie on the heap as usual.
template <typename T>
struct LargePageAllocator
{
    using value_type = T;
    static constexpr size_t pageBytes = size_t{2} << 20;

    LargePageAllocator() = default;
    template <typename U>
    LargePageAllocator(const LargePageAllocator<U> &)
    {
    }

    T *allocate(size_t count)
    {
        if (count > (size_t(-1) - pageBytes) / sizeof(T))
            throw std::bad_array_new_length();
        const size_t bytes = count * sizeof(T);
        void *memory = nullptr;
        if (bytes < 2 * pageBytes) {
            memory = std::malloc(bytes);
        } else {
            const size_t whole = (bytes + pageBytes - 1) / pageBytes * pageBytes;
            memory = std::aligned_alloc(pageBytes, whole);
#ifdef __linux__
            if (memory)
                madvise(memory, whole, MADV_HUGEPAGE); // a wish; without it pages are small
#endif
        }
        if (!memory)
            throw std::bad_alloc();
        return static_cast<T *>(memory);
    }
    void deallocate(T *memory, size_t)
    {
        std::free(memory);
    }

    bool operator==(const LargePageAllocator &) const
    {
        return true;
    }
};

template <typename T>
using LargeVector = std::vector<T, LargePageAllocator<T>>;

} // namespace marlowen

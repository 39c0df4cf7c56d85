#include "relief/grid/gridlayer.h"

#include "base/largepages.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace marlowen {

namespace {

/// Layers from this size on are mapped: the system hands out its own zeros page by page, on the
/// first write. The heap would clear memory that it has handed out before.
constexpr size_t mappedBytes = size_t{1} << 20;

size_t byteCount(qsizetype size)
{
    return static_cast<size_t>(size) * sizeof(float);
}

/// Of the memory behind them, with the float after the last.
size_t memoryBytes(qsizetype size)
{
    return byteCount(size) + sizeof(float);
}

void *mapAnywhere(size_t bytes)
{
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    return memory;
}

size_t wholePages(size_t bytes)
{
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return (bytes + page - 1) / page * page;
}

/// Large layers begin with a large page: the cells before one would be mapped 4 KiB at a time.
float *map(size_t bytes)
{
    if (bytes < 2 * largePageBytes)
        return static_cast<float *>(mapAnywhere(bytes));
    bytes = wholePages(bytes);
    char *memory = static_cast<char *>(mapAnywhere(bytes + largePageBytes));
    const size_t over = reinterpret_cast<uintptr_t>(memory) % largePageBytes;
    const size_t before = over ? largePageBytes - over : 0;
    if (before)
        munmap(memory, before);
    munmap(memory + before + bytes, largePageBytes - before);
    wishLargePages(memory + before, bytes);
    return reinterpret_cast<float *>(memory + before);
}

float *allocate(qsizetype size)
{
    if (memoryBytes(size) >= mappedBytes)
        return map(memoryBytes(size));
    void *memory = std::calloc(memoryBytes(size), 1);
    if (!memory)
        throw std::bad_alloc();
    return static_cast<float *>(memory);
}

void release(float *memory, qsizetype size)
{
    if (memory && memoryBytes(size) >= mappedBytes)
        munmap(memory, memoryBytes(size));
    else
        std::free(memory);
}

} // namespace

GridLayer::GridLayer(qsizetype size)
    : m_data(allocate(size))
    , m_size(size)
{
}

GridLayer::GridLayer(GridLayer &&other) noexcept
{
    swap(other);
}

GridLayer &GridLayer::operator=(GridLayer &&other) noexcept
{
    GridLayer taken(std::move(other));
    swap(taken);
    return *this;
}

GridLayer::~GridLayer()
{
    release(m_data, m_size);
}

void GridLayer::clear()
{
    if (m_written)
        std::memset(m_data, 0, byteCount(m_size));
    m_written = false;
}

void GridLayer::copyFrom(const GridLayer &other)
{
    if (!other.written())
        clear();
    else
        std::memcpy(data(), other.constData(), byteCount(m_size));
}

void GridLayer::swap(GridLayer &other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_written, other.m_written);
}

} // namespace marlowen

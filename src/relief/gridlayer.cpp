#include "relief/gridlayer.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace {

/// Asks for large pages behind a large block: the first write to fresh memory costs several times
/// the write itself, most of it once a page. A system that has none changes nothing.
void _preferLargePages(float *data, size_t bytes)
{
#ifdef Q_OS_LINUX
    constexpr uintptr_t page = uintptr_t{2} << 20;
    const uintptr_t start = (reinterpret_cast<uintptr_t>(data) + page - 1) / page * page;
    const uintptr_t end = (reinterpret_cast<uintptr_t>(data) + bytes) / page * page;
    if (start < end)
        madvise(reinterpret_cast<void *>(start), end - start, MADV_HUGEPAGE);
#else
    (void)data;
    (void)bytes;
#endif
}

} // namespace

GridLayer::GridLayer(qsizetype size)
    : m_size(size)
{
    // calloc hands out untouched pages of the system's own zeros for anything large.
    m_data = static_cast<float *>(std::calloc(static_cast<size_t>(size), sizeof(float)));
    if (!m_data && size > 0)
        throw std::bad_alloc();
    _preferLargePages(m_data, static_cast<size_t>(size) * sizeof(float));
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
    std::free(m_data);
}

void GridLayer::clear()
{
    if (m_written)
        std::memset(m_data, 0, static_cast<size_t>(m_size) * sizeof(float));
    m_written = false;
}

void GridLayer::copyFrom(const GridLayer &other)
{
    if (!other.written())
        clear();
    else
        std::memcpy(data(), other.constData(), static_cast<size_t>(m_size) * sizeof(float));
}

void GridLayer::swap(GridLayer &other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_written, other.m_written);
}

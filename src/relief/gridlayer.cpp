#include "relief/gridlayer.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

GridLayer::GridLayer(qsizetype size) : m_size(size)
{
    // calloc hands out untouched pages of the system's own zeros for anything large.
    m_data = static_cast<float *>(std::calloc(static_cast<size_t>(size), sizeof(float)));
    if (!m_data && size > 0)
        throw std::bad_alloc();
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

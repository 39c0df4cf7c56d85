#pragma once

#include <QtGlobal>

namespace marlowen {

/// One layer of a relief: `size()` floats, all 0 at first. A layer that was never written takes
/// no resident memory; `written()` lets readers skip it.
class GridLayer
{
public:
    GridLayer() = default;
    /// Throws std::bad_alloc when there is not enough memory.
    explicit GridLayer(qsizetype size);
    GridLayer(GridLayer &&other) noexcept;
    GridLayer &operator=(GridLayer &&other) noexcept;
    GridLayer(const GridLayer &) = delete;
    GridLayer &operator=(const GridLayer &) = delete;
    ~GridLayer();

    qsizetype size() const { return m_size; }
    /// False until the first data() call after construction or clear(): every value is 0.
    bool written() const { return m_written; }

    const float *constData() const { return m_data; } ///< one float after the last can be read
    const float *data() const { return m_data; }
    /// Counts as a write.
    float *data()
    {
        m_written = true;
        return m_data;
    }

    /// Back to all 0, keeping the memory warm.
    void clear();
    /// Takes the values of a layer of the same size.
    void copyFrom(const GridLayer &other);
    void swap(GridLayer &other) noexcept;

private:
    float *m_data = nullptr;
    qsizetype m_size = 0;
    bool m_written = false;
};

} // namespace marlowen

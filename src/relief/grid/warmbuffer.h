#pragma once

#include <cstddef>
#include <memory>

namespace marlowen {

/// Memory that is kept between uses: `need` hands out at least that many values without setting
/// them, and allocates only when it has never held so many. Pages stay mapped once they were
/// touched.
template <typename T>
class WarmBuffer
{
public:
    T *need(size_t count)
    {
        if (count > m_capacity) {
            m_data.reset();
            m_data = std::make_unique_for_overwrite<T[]>(count);
            m_capacity = count;
        }
        return m_data.get();
    }
    T *data() { return m_data.get(); }
    const T *data() const { return m_data.get(); }

private:
    std::unique_ptr<T[]> m_data;
    size_t m_capacity = 0;
};

} // namespace marlowen

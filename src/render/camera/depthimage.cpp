#include "render/camera/depthimage.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

void DepthImage::resize(QSize physical)
{
    m_size = physical.expandedTo({0, 0});
    m_values.assign(static_cast<size_t>(m_size.width()) * static_cast<size_t>(m_size.height()),
                    1.0F);
}

double DepthImage::at(QPoint position, double ratio) const
{
    const int x = physicalPixels(position.x(), ratio);
    const int y = m_size.height() - 1 - physicalPixels(position.y(), ratio);
    if (x < 0 || y < 0 || x >= m_size.width() || y >= m_size.height())
        return 1.0;
    return m_values[static_cast<size_t>(y) * static_cast<size_t>(m_size.width()) +
                    static_cast<size_t>(x)];
}

int physicalPixels(int logical, double ratio)
{
    return static_cast<int>(std::clamp(std::round(logical * ratio), -1e9, 1e9));
}

QSize physicalSize(QSize logical, double ratio)
{
    return {physicalPixels(logical.width(), ratio), physicalPixels(logical.height(), ratio)};
}

} // namespace marlowen

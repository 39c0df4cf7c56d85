#include "relief/tools/alphabrush.h"

#include "relief/tools/alphasample.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

AlphaBrush &AlphaBrush::instance()
{
    static AlphaBrush brush;
    return brush;
}

void AlphaBrush::setImage(GridView image)
{
    m_changes += 2;
    m_values.clear();
    m_side = 0;
    if (!image.values || image.width <= 0)
        return;
    Q_ASSERT(image.width == image.height);
    m_values.assign(image.values, image.values + image.cells());
    m_side = image.width;
    // Comparisons are written so that NaN becomes 0.
    for (float &value : m_values)
        value = value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}

double alphaSample(GridView image, double u, double v, bool wrap)
{
    if (image.width <= 0 || !std::isfinite(u) || !std::isfinite(v))
        return 0.0;
    return alphaAt(image, u, v, wrap);
}

} // namespace marlowen

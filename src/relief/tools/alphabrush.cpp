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

void AlphaBrush::setImage(const float *values, int side)
{
    m_changes += 2;
    m_values.clear();
    m_side = 0;
    if (!values || side <= 0)
        return;
    m_values.assign(values, values + static_cast<size_t>(side) * static_cast<size_t>(side));
    m_side = side;
    // Comparisons are written so that NaN becomes 0.
    for (float &value : m_values)
        value = value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}

double alphaSample(const float *values, int side, double u, double v, bool wrap)
{
    if (side <= 0 || !std::isfinite(u) || !std::isfinite(v))
        return 0.0;
    return alphaAt({values, side, side}, u, v, wrap);
}

} // namespace marlowen

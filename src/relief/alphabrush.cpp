#include "relief/alphabrush.h"

#include <algorithm>
#include <cmath>

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
    // Written so that NaN gives 0 as well.
    if (!wrap && !(u >= 0.0 && u <= 1.0 && v >= 0.0 && v <= 1.0))
        return 0.0;
    const double x = u * side - 0.5;
    const double y = v * side - 0.5;
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto place = [side, wrap](double index) {
        if (!wrap)
            return static_cast<size_t>(std::clamp(index, 0.0, side - 1.0));
        const double turned = index - side * std::floor(index / side);
        return static_cast<size_t>(std::clamp(turned, 0.0, side - 1.0));
    };
    const auto width = static_cast<size_t>(side);
    const size_t columns[2] = {place(left), place(left + 1.0)};
    const float *rows[2] = {values + place(top) * width, values + place(top + 1.0) * width};
    const double fx = x - left;
    const double fy = y - top;
    const double upper = rows[0][columns[0]] * (1.0 - fx) + rows[0][columns[1]] * fx;
    const double lower = rows[1][columns[0]] * (1.0 - fx) + rows[1][columns[1]] * fx;
    return upper * (1.0 - fy) + lower * fy;
}

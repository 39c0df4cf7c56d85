#pragma once

#include <QtGlobal>

#include <span>

namespace marlowen {

/// Smallest and largest height of a relief, unscaled; the largest is at least 0.
struct HeightRange
{
    double minimum = 0.0;
    double maximum = 0.0;
};

/// Reads `count` heights once. Without any the range is 0 to 0; values that are not numbers are
/// passed over.
HeightRange scanHeights(std::span<const float> heights);

} // namespace marlowen

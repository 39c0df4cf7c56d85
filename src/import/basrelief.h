#pragma once

#include "base/progress.h"
#include "relief/grid/floatgrid.h"

#include <functional>
#include <optional>
#include <vector>

namespace marlowen {

/// What a bas-relief is made of: heights, none negative, and the three settings.
struct BasReliefInput
{
    GridView heights;
    int gridSize = 2;
    int contrastFactor = 8;
    int smoothness = 20000;
};

/// Compresses the height range while keeping the detail. Returns as many heights, none
/// negative, or nothing when the user cancelled.
using BasReliefGenerator =
    std::function<std::optional<std::vector<float>>(const BasReliefInput &, Progress &)>;

} // namespace marlowen

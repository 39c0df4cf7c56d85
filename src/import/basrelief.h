#pragma once

#include "base/progress.h"

#include <functional>
#include <optional>
#include <vector>

namespace marlowen {

/// What a bas-relief is made of: width x height heights, row-major, none negative.
struct BasReliefInput
{
    const float *heights = nullptr;
    int width = 0;
    int height = 0;
    int gridSize = 2;
    int contrastFactor = 8;
    int smoothness = 20000;
};

/// Compresses the height range while keeping the detail. Returns width x height heights, none
/// negative, or nothing when the user cancelled.
using BasReliefGenerator =
    std::function<std::optional<std::vector<float>>(const BasReliefInput &, Progress &)>;

} // namespace marlowen

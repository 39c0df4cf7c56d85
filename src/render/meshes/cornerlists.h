#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace marlowen {

/// The corners that several threads found, one list after another.
inline std::vector<uint32_t> joined(std::span<const std::vector<uint32_t>> lists)
{
    size_t count = 0;
    for (const std::vector<uint32_t> &list : lists)
        count += list.size();
    std::vector<uint32_t> corners;
    corners.reserve(count);
    for (const std::vector<uint32_t> &list : lists)
        corners.insert(corners.end(), list.begin(), list.end());
    return corners;
}

} // namespace marlowen

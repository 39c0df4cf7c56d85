#pragma once

namespace marlowen {

/// Lowest and highest of a set of values.
struct ValueRange
{
    double lowest = 0.0;
    double highest = 0.0;
    double span() const { return highest - lowest; }
    bool operator==(const ValueRange &) const = default;
};

} // namespace marlowen

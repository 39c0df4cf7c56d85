#include "relief/operations/linetaps.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

void addInterpolation(LinePlan &plan, double position, int sourceLength)
{
    const int first = static_cast<int>(position);
    const double fraction = position - first;
    const int count = first + 1 < sourceLength ? 2 : 1;
    plan.taps.push_back({first, count, plan.weights.size(), 1.0});
    plan.weights.push_back(count == 2 ? 1.0 - fraction : 1.0);
    if (count == 2)
        plan.weights.push_back(fraction);
}

void addAverage(LinePlan &plan, double start, double end, int sourceLength)
{
    const int first = static_cast<int>(start);
    const int last = std::min(sourceLength, static_cast<int>(std::ceil(end)));
    Taps taps{first, 0, plan.weights.size(), 0.0};
    for (int cell = first; cell < last; ++cell) {
        const double overlap =
            std::min(cell + 1.0, end) - std::max(static_cast<double>(cell), start);
        if (overlap <= 0.0)
            break;
        plan.weights.push_back(overlap);
        taps.total += overlap;
        ++taps.count;
    }
    plan.taps.push_back(taps);
}

} // namespace

CellRange LinePlan::sources(CellRange cells) const
{
    const Taps &last = (*this)[cells.end - 1];
    return {(*this)[cells.first].first, last.first + last.count};
}

CellRange LinePlan::reached(CellRange sources) const
{
    const auto first = std::partition_point(taps.begin(), taps.end(), [&](const Taps &cell) {
        return cell.first + cell.count <= sources.first;
    });
    const auto end = std::partition_point(
        first, taps.end(), [&](const Taps &cell) { return cell.first < sources.end; });
    return {static_cast<int>(first - taps.begin()), static_cast<int>(end - taps.begin())};
}

CellRange LinePlan::within(CellRange sources) const
{
    const auto first = std::partition_point(
        taps.begin(), taps.end(), [&](const Taps &cell) { return cell.first < sources.first; });
    const auto end = std::partition_point(first, taps.end(), [&](const Taps &cell) {
        return cell.first + cell.count <= sources.end;
    });
    return {static_cast<int>(first - taps.begin()), static_cast<int>(end - taps.begin())};
}

LinePlan planLine(int sourceLength, int destinationLength)
{
    const double ratio = static_cast<double>(sourceLength) / destinationLength;
    LinePlan plan;
    plan.averages = ratio > 1.0;
    plan.taps.reserve(static_cast<size_t>(destinationLength));
    for (int i = 0; i < destinationLength; ++i) {
        if (plan.averages)
            addAverage(plan, i * ratio, (i + 1) * ratio, sourceLength);
        else
            addInterpolation(plan, std::clamp((i + 0.5) * ratio - 0.5, 0.0, sourceLength - 1.0),
                             sourceLength);
    }
    return plan;
}

} // namespace marlowen

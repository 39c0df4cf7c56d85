#pragma once

#include "base/progress.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlowen {

/// Looks at a progress once in a while from within long loops whose share of the work is not known.
class Pulse
{
public:
    explicit Pulse(Progress &progress)
        : m_progress(progress)
    {
    }

    /// To be called once for every facet or so; false once the work was cancelled.
    bool beat() { return ++m_beats % between != 0 ? !m_stopped : look(); }
    /// To be called after a piece of work of some milliseconds.
    bool look()
    {
        m_progress.advance(0.0);
        m_stopped = m_stopped || m_progress.cancelled();
        return !m_stopped;
    }

private:
    static constexpr uint64_t between = 65536;

    Progress &m_progress;
    uint64_t m_beats = 0;
    bool m_stopped = false;
};

/// Sorts edges, which begin with the number of a cell. False when it was cancelled; then they are
/// in any order.
template <std::size_t Size>
bool sortEdges(std::vector<std::array<uint32_t, Size>> &edges, Pulse &pulse)
{
    constexpr std::size_t smallBand = 1U << 16;
    const std::size_t bands = edges.size() / smallBand + 1;
    uint32_t last = 0;
    for (const auto &edge : edges) {
        last = std::max(last, edge[0]);
        if (!pulse.beat())
            return false;
    }
    const auto bandOf = [&](const auto &edge) {
        return static_cast<std::size_t>(uint64_t{edge[0]} * bands / (uint64_t{last} + 1));
    };
    std::vector<std::size_t> ends(bands + 1, 0);
    for (const auto &edge : edges) {
        ++ends[bandOf(edge) + 1];
        if (!pulse.beat())
            return false;
    }
    for (std::size_t band = 0; band < bands; ++band)
        ends[band + 1] += ends[band];
    std::vector<std::size_t> next(ends.begin(), ends.end() - 1);
    std::vector<std::array<uint32_t, Size>> sorted(edges.size());
    for (const auto &edge : edges) {
        sorted[next[bandOf(edge)]++] = edge;
        if (!pulse.beat())
            return false;
    }
    edges.swap(sorted);
    for (std::size_t band = 0; band < bands; ++band) {
        std::sort(edges.begin() + static_cast<std::ptrdiff_t>(ends[band]),
                  edges.begin() + static_cast<std::ptrdiff_t>(ends[band + 1]));
        if (!pulse.look())
            return false;
    }
    return true;
}

} // namespace marlowen

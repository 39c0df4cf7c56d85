#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <vector>

/// Memory-copy baselines: every benchmark states its time as a multiple of copying the same bytes,
/// measured in turn with the work itself so that a busy or slow machine slows both.
namespace baseline {

inline double now()
{
    using Clock = std::chrono::steady_clock;
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Two warm buffers of the same size and the time of one copy between them.
class Copier
{
public:
    explicit Copier(size_t bytes)
        : m_from(bytes, 1)
        , m_to(bytes, 2)
    {
    }

    double seconds()
    {
        // Small copies are repeated so that the clock's own cost does not show.
        const size_t repeats =
            std::max<size_t>(1, (size_t{1} << 20) / std::max<size_t>(1, m_from.size()));
        const double start = now();
        for (size_t i = 0; i < repeats; ++i) {
            std::memcpy(m_to.data(), m_from.data(), m_from.size());
            benchmark::ClobberMemory();
        }
        return (now() - start) / static_cast<double>(repeats);
    }

private:
    std::vector<char> m_from;
    std::vector<char> m_to;
};

/// Runs `prepare` (untimed) and `work` (timed) in every iteration, each followed by a copy of
/// `bytes`, and reports the counters "copy_ms" and "x_copy" (median time of the work over median
/// time of the copy). Register with UseManualTime().
template <typename Prepare, typename Work>
void measure(benchmark::State &state, size_t bytes, Prepare prepare, Work work)
{
    Copier copier(bytes);
    copier.seconds();
    std::vector<double> copies;
    std::vector<double> works;
    for (auto _ : state) {
        prepare();
        copies.push_back(copier.seconds());
        const double start = now();
        work();
        benchmark::ClobberMemory();
        works.push_back(now() - start);
        state.SetIterationTime(works.back());
    }
    state.counters["copy_ms"] = 1e3 * median(copies);
    state.counters["x_copy"] = median(works) / median(copies);
    state.SetBytesProcessed(static_cast<int64_t>(bytes) * state.iterations());
}

template <typename Work>
void measure(benchmark::State &state, size_t bytes, Work work)
{
    measure(
        state, bytes, [] {}, work);
}

} // namespace baseline

#include "ui/controllers/exportestimate.h"

#include "relief/grid/relief.h"
#include "workbench/workbench.h"

#include <new>

namespace marlowen {

namespace {

using std::chrono::milliseconds;

/// A relief that is being edited changes again soon.
constexpr milliseconds settle{250};
constexpr milliseconds slice{12};
/// For work with a progress box.
constexpr milliseconds longSlice{30};
/// Between two lines to the page.
constexpr int frameMs = 100;

} // namespace

ExportEstimate::ExportEstimate(Workbench &bench, QObject *parent)
    : QObject(parent)
    , m_bench(bench)
{
    m_delay.setSingleShot(true);
    m_delay.setInterval(settle);
    m_slices.setInterval(0);
    connect(&m_delay, &QTimer::timeout, this, &ExportEstimate::_begin);
    connect(&m_slices, &QTimer::timeout, this, &ExportEstimate::_tick);
    // At the first of these signals the old relief still exists; at the others its heights changed.
    connect(&bench, &Workbench::replaced, this, &ExportEstimate::_restart);
    connect(&bench, &Workbench::changed, this, &ExportEstimate::_restart);
    connect(&bench, &Workbench::importChanged, this, &ExportEstimate::_restart);
}

void ExportEstimate::setOptions(const ExportOptions &options)
{
    ExportOptions wanted = options;
    wanted.standardStl = false; // changes no facet
    if (wanted == m_options)
        return;
    m_options = wanted;
    _restart();
}

void ExportEstimate::setShown(bool shown)
{
    if (shown == std::exchange(m_shown, shown))
        return;
    _restart();
}

void ExportEstimate::_restart()
{
    m_slices.stop();
    m_delay.stop();
    m_reduction.reset();
    m_ended = false;
    if (std::exchange(m_known, false))
        emit changed();
    if (m_shown)
        m_delay.start();
}

void ExportEstimate::_begin()
{
    m_delay.stop();
    const Relief *relief = m_bench.relief();
    if (!relief)
        return;
    if (m_bench.engine().stroking())
        return m_delay.start();
    const std::optional<ReductionGoal> goal = reductionGoal(*relief, m_options);
    m_known = true;
    m_ended = !goal;
    if (goal) {
        m_reduction = std::make_unique<FacetReducer>(heightView(*relief), *goal);
        m_forecast = MeshForecast{.reduced = true};
        m_slices.start();
        m_told.start();
    } else {
        m_forecast = marlowen::forecast(*relief, m_options);
        emit changed();
    }
}

void ExportEstimate::_tick()
{
    // A stroke changes the heights under the reduction; its end begins anew.
    if (m_bench.engine().stroking())
        return m_slices.stop();
    try {
        _work(slice);
    } catch (const std::bad_alloc &) {
        // The page then shows no forecast; an export tries again and reports the failure.
        m_slices.stop();
        m_reduction.reset();
        m_known = false;
        emit changed();
        return;
    }
    if (!m_ended && m_told.elapsed() < frameMs)
        return;
    m_told.start();
    emit changed();
}

void ExportEstimate::_work(milliseconds time)
{
    m_ended = m_reduction->step(time);
    m_forecast = marlowen::forecast(*m_bench.relief(), m_options, *m_reduction);
    if (m_ended)
        m_slices.stop();
}

bool ExportEstimate::finish(const std::function<bool()> &show)
{
    if (!m_known)
        _begin();
    m_slices.stop();
    while (!m_ended) {
        _work(longSlice);
        if (!show()) {
            if (m_shown)
                m_slices.start();
            else
                _restart();
            return false;
        }
    }
    emit changed();
    return true;
}

} // namespace marlowen

#pragma once

#include "base/progress.h"

#include <QtGlobal>

#include <functional>

namespace marlowen {

/// Runs long work over the rows of a grid on all cores, turns the cells it has been through into
/// progress, and looks at "Cancel" often enough that it takes effect within a few milliseconds.
/// Only the thread that called is asked to report. How many looks there are depends on how the
/// threads share the bands, but large work is looked at after each call of rows() in any case.
class WorkMeter
{
public:
    /// `cells` is an estimate of all cells that will be spent.
    WorkMeter(Progress &progress, double cells);

    /// Calls work(first, end) for bands that cover the rows 0..count, several at a time: what it
    /// does to a row must not depend on other rows it writes. Returns false once the user
    /// cancelled, with some rows not worked on; it then does so every time.
    bool rows(int count, qsizetype cellsPerRow, const std::function<void(int, int)> &work);

private:
    bool _report(double cellsNow);

    Progress &m_progress;
    double m_total;
    double m_spent = 0.0;
    double m_nextLook = 0.0;
    bool m_cancelled = false;
};

} // namespace marlowen

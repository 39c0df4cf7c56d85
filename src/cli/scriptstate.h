#pragma once

#include "base/progress.h"
#include "base/result.h"
#include "relief/grid/relief.h"
#include "workbench/workbench.h"

#include <QByteArray>

namespace marlowen {

/// What one script works on, as the window does.
class ScriptState
{
public:
    /// `progress` receives the progress of long work and outlives the state.
    explicit ScriptState(Progress &progress)
        : m_progress(progress)
    {
    }

    Workbench bench;
    /// Null until the script makes or opens one.
    Relief *relief() const { return bench.relief(); }
    Progress &progress() { return m_progress; }

    /// One line on standard output, at once. False when it could not be written.
    bool print(const QByteArray &line);

private:
    Progress &m_progress;
};

/// What went wrong in an action, in one sentence.
Failure scriptFailure(const QString &sentence);

} // namespace marlowen

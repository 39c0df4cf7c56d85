#pragma once

#include "files/export/meshexport.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

namespace marlowen {

class Workbench;

/// Computes what an export of the workbench's relief would write, in slices of the event loop, so
/// that the window never waits. The export continues the reduction that was made so far.
class ExportEstimate : public QObject
{
    Q_OBJECT

public:
    explicit ExportEstimate(Workbench &bench, QObject *parent = nullptr);

    /// The options to estimate; other ones begin anew.
    void setOptions(const ExportOptions &options);
    /// Works only while the result is shown; hiding it drops the result.
    void setShown(bool shown);

    /// Whether forecast() holds anything.
    bool known() const { return m_known; }
    bool ended() const { return m_ended; }
    const MeshForecast &forecast() const { return m_forecast; }

    /// Calls `show` between slices of work until the numbers are final; false when it returns
    /// false. Needs a relief.
    bool finish(const std::function<bool()> &show);
    /// What the export writes once finish() is done; null: every grid triangle.
    const FacetReducer *reduction() const { return m_reduction.get(); }

signals:
    /// The forecast is another one, or none.
    void changed();

private:
    void _restart();
    void _begin();
    void _tick();
    void _work(std::chrono::milliseconds time);

    Workbench &m_bench;
    ExportOptions m_options;
    bool m_shown = false;
    bool m_known = false;
    bool m_ended = false;
    MeshForecast m_forecast;
    std::unique_ptr<FacetReducer> m_reduction;
    QTimer m_delay; ///< runs from a change to the beginning of the work
    QTimer m_slices;
    QElapsedTimer m_told;
};

} // namespace marlowen

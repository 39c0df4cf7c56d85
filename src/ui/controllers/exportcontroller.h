#pragma once

#include "files/export/meshexport.h"

#include <QObject>
#include <QString>

#include <functional>

class QWidget;

namespace marlowen {

class CommandSet;
class ExportEstimate;
class ExportPage;
struct Format;
class Workbench;

/// The export commands, what their page shows, and the hand-over of the relief to the sister
/// program. Dialogs stand over the window.
class ExportController : public QObject
{
    Q_OBJECT

public:
    ExportController(Workbench &bench, ExportPage *page, QWidget *window);

    void exportStl() { _exportMesh(MeshFormat::Stl); }
    void exportObj() { _exportMesh(MeshFormat::Obj); }
    void exportPattern();
    /// Whether the page is in front: it says what an export would write.
    void setPageShown(bool shown);
    /// The page's unit, an index into lengthUnits.
    void setUnit(int unit);

    /// Where the sister program waits for the height map; empty: there is none.
    void setHandOverPath(const QString &path) { m_handOverPath = path; }
    /// Writes the map and ends the process. Nothing without a relief or a path.
    void handOver();
    /// The relief is with the sister program: closing asks nothing.
    bool isHandedOver() const { return m_handedOver; }

    /// Enables what can act now; the rest says why it cannot.
    void setupControls(CommandSet &commands) const;

    /// What ends the process when it does not end by itself after a hand-over; tests replace it.
    std::function<void()> forcedExit;

signals:
    /// The map is written; the process ends next.
    void handedOver();
    /// A line for the status bar, shown for so many milliseconds.
    void said(const QString &text, int milliseconds);

private:
    void _exportMesh(MeshFormat format);
    QString _askForTarget(const Format &format) const;
    bool _reduce();
    bool _mayBeLarge(MeshFormat format);
    void _written(const QString &path, const QString &line);
    void _showForecast();

    Workbench &m_bench;
    ExportPage *m_page;
    QWidget *m_window;
    ExportEstimate *m_estimate;
    int m_unit = 0;
    QString m_handOverPath;
    bool m_handedOver = false;
};

} // namespace marlowen

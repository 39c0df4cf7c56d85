#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QWidget;

namespace marlowen {

class CommandSet;
class Workbench;

/// The export commands, and the hand-over of the relief to the sister program. Dialogs stand over
/// the window.
class ExportController : public QObject
{
    Q_OBJECT

public:
    ExportController(Workbench &bench, QWidget *window);

    void exportStl();
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
    Workbench &m_bench;
    QWidget *m_window;
    QString m_handOverPath;
    bool m_handedOver = false;
};

} // namespace marlowen

#pragma once

#include "relief/operations/placement.h"
#include "render/gestures/placegesture.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

namespace marlowen {

class CommandSet;
class FlatWin;
class PatternPanel;
class PlacePanel;
class Workbench;

/// Placing a pattern of the library on the relief: handles in the 2D view, numbers in a panel, the
/// relief with the pattern in both views, until it is kept as one step or taken off again. Also
/// adds patterns to the library. Dialogs stand over the window.
class PlaceController : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        PatternPanel *library;
        PlacePanel *panel;
        FlatWin *view;
    };
    PlaceController(Workbench &bench, const Parts &parts, QWidget *window);

    /// Reads the pattern and lays it onto the middle of the selection or of the relief, no larger
    /// than fits; another one that is being placed gives way to it.
    void begin(const QString &path);
    bool isPlacing() const { return m_pattern != nullptr; }
    void apply();
    void cancel();
    /// Asks for a name and writes the relief, or its selection, into the library.
    void addToLibrary();
    /// The unit that lengths are shown in, an index into lengthUnits.
    void setUnit(int unit);

    /// Enables what can act now; the rest says why it cannot.
    void setupControls(CommandSet &commands) const;
    /// Why the relief cannot be edited while a pattern is being placed; empty otherwise.
    QString reason() const;

signals:
    /// A pattern is being placed from now on, or no more.
    void placingChanged();
    /// A line for the status bar, shown for so many milliseconds.
    void said(const QString &text, int milliseconds);

private:
    void _start(std::shared_ptr<const PlacedPattern> pattern);
    void _change(const Placement &placement);
    void _dragged();
    void _run();
    void _benchChanged();
    void _end();

    Workbench &m_bench;
    Parts m_parts;
    QWidget *m_window;
    std::shared_ptr<const PlacedPattern> m_pattern; ///< null: none is being placed
    Placement m_placement;
    PlaceGesture m_gesture;
    QTimer m_numbers;   ///< runs while the panel may be behind the placement
    bool m_due = false; ///< a run is posted: several moves of the pointer make one picture
    bool m_running = false;
    bool m_shown = false; ///< the pattern is on the relief
    int m_unit = 0;
};

} // namespace marlowen

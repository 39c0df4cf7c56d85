#include "ui/controllers/placecontroller.h"

#include "relief/grid/relief.h"
#include "render/views/flatwin.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/library/patternpanel.h"
#include "ui/library/patternstore.h"
#include "ui/library/placepanel.h"
#include "ui/progressbox.h"
#include "workbench/workbench.h"

#include <QFileInfo>
#include <QInputDialog>
#include <QScopedValueRollback>

#include <algorithm>
#include <new>
#include <utility>

namespace marlowen {

namespace {

/// Of the relief, at first, along the tighter side.
constexpr double largestShare = 0.8;
constexpr int lineMs = 4000;
constexpr int numbersMs = 100;
/// Commands that would meet the relief with the pattern half placed.
constexpr const char *stopped[] = {"save",      "saveAs",         "exportStl", "exportObj",
                                   "exportPtr", "sendToDrafteon", "maskClear", "maskInvert"};

Failure shortOfMemory()
{
    return {PlaceController::tr("Open Failed"),
            PlaceController::tr("There is not enough memory for this pattern.")};
}

PlaceGesture::Frame frameOf(const PlacedPattern &pattern, const Placement &placement)
{
    return {placement.centre, placement.angle, placement.scale,
            QSizeF(pattern.width(), pattern.height())};
}

} // namespace

PlaceController::PlaceController(Workbench &bench, const Parts &parts, QWidget *window)
    : QObject(window)
    , m_bench(bench)
    , m_parts(parts)
    , m_window(window)
{
    parts.panel->hide();
    m_numbers.setSingleShot(true);
    m_numbers.setInterval(numbersMs);
    connect(&m_numbers, &QTimer::timeout, this, [this] {
        if (isPlacing())
            m_parts.panel->showPlacement(m_placement);
    });
    connect(parts.panel, &PlacePanel::changed, this, &PlaceController::_change);
    connect(parts.panel, &PlacePanel::applied, this, &PlaceController::apply);
    connect(parts.panel, &PlacePanel::cancelled, this, &PlaceController::cancel);
    connect(parts.view, &FlatWin::placeDragged, this, &PlaceController::_dragged);
    connect(parts.view, &FlatWin::placeApplied, this, &PlaceController::apply);
    connect(parts.view, &FlatWin::placeCancelled, this, &PlaceController::cancel);
    connect(parts.library, &PatternPanel::placeWanted, this, &PlaceController::begin);
    connect(parts.library, &PatternPanel::addWanted, this, &PlaceController::addToLibrary);
    connect(&bench, &Workbench::changed, this, &PlaceController::_benchChanged);
    connect(&bench, &Workbench::replaced, this, &PlaceController::_end);
}

void PlaceController::begin(const QString &path)
{
    if (!reasonAgainstEditing(m_bench).isEmpty() || dialogsOpen())
        return;
    try {
        ProgressBox progress(tr("Opening the pattern"), m_window);
        const Result<Pattern> loaded = loadPattern(path, progress);
        if (progress.cancelled())
            return;
        if (!loaded)
            return showFailure(m_window, loaded.failure());
        const Pattern &pattern = loaded.value();
        m_parts.panel->setName(QFileInfo(path).completeBaseName());
        _start(std::make_shared<PlacedPattern>(pattern.heights.view(), pattern.info.zScale));
    } catch (const std::bad_alloc &) {
        showFailure(m_window, shortOfMemory());
    }
}

void PlaceController::_start(std::shared_ptr<const PlacedPattern> pattern)
{
    const Relief &relief = *m_bench.relief();
    const bool first = !isPlacing();
    m_pattern = std::move(pattern);
    if (first) {
        const QRect box = relief.selectionActive ? selectedBox(relief) : relief.rect();
        m_placement.centre = QRectF(box.isEmpty() ? relief.rect() : box).center();
        m_placement.angle = 0.0;
    }
    m_placement.scale = std::min({1.0, largestShare * relief.width() / m_pattern->width(),
                                  largestShare * relief.height() / m_pattern->height()});
    const FieldRange &scales = fieldOf(placementFields(), &Placement::scale).info.range;
    m_gesture.setLimits({QSizeF(relief.width(), relief.height()), scales.minimum, scales.maximum});
    m_parts.view->setPlaceGesture(&m_gesture);
    m_numbers.stop();
    _change(m_placement);
    if (first) {
        m_parts.panel->show();
        m_parts.view->setFocus();
        emit placingChanged();
    }
}

/// Handles and the relief follow; the numbers too, but no faster than one can read them: each time
/// they are painted and sent to the screen.
void PlaceController::_change(const Placement &placement)
{
    m_placement = placement;
    m_gesture.setFrame(frameOf(*m_pattern, placement));
    if (!m_numbers.isActive()) {
        m_parts.panel->showPlacement(placement);
        m_numbers.start();
    }
    m_parts.view->update();
    // Not a timer: those of no time wait until everything is painted.
    if (!std::exchange(m_due, true))
        QMetaObject::invokeMethod(this, &PlaceController::_run, Qt::QueuedConnection);
}

void PlaceController::_dragged()
{
    if (!isPlacing())
        return;
    Placement placement = m_placement;
    placement.centre = m_gesture.frame().centre;
    placement.angle = m_gesture.frame().angle;
    placement.scale = m_gesture.frame().scale;
    _change(placement);
}

void PlaceController::_run()
{
    if (!std::exchange(m_due, false) || !isPlacing())
        return;
    const QScopedValueRollback running(m_running, true);
    const Outcome done = m_bench.preview().run(placeOperation(m_pattern, m_placement));
    m_shown = m_bench.preview().active();
    if (done)
        return;
    showFailure(m_window, done.failure());
    cancel();
}

/// Another step, such as Undo, has taken the pattern off.
void PlaceController::_benchChanged()
{
    if (isPlacing() && !m_running && m_shown && !m_bench.preview().active())
        _end();
}

void PlaceController::apply()
{
    if (!isPlacing())
        return;
    _run();
    if (!isPlacing())
        return;
    const QScopedValueRollback running(m_running, true);
    const Outcome kept = m_bench.preview().keep();
    _end();
    if (!kept)
        showFailure(m_window, kept.failure());
}

void PlaceController::cancel()
{
    if (!isPlacing())
        return;
    const QScopedValueRollback running(m_running, true);
    m_bench.preview().drop();
    _end();
}

void PlaceController::_end()
{
    if (!isPlacing())
        return;
    m_due = false;
    m_pattern.reset();
    m_shown = false;
    m_parts.view->setPlaceGesture(nullptr);
    m_parts.panel->hide();
    emit placingChanged();
}

void PlaceController::addToLibrary()
{
    if (!m_bench.relief() || dialogsOpen())
        return;
    m_bench.endStroke();
    bool accepted = false;
    const QString name =
        QInputDialog::getText(m_window, tr("Add to Library"), tr("Name of the pattern"),
                              QLineEdit::Normal, QFileInfo(m_bench.file()).completeBaseName(),
                              &accepted)
            .trimmed();
    if (!accepted || name.isEmpty())
        return;
    try {
        ProgressBox progress(tr("Adding to the library"), m_window);
        const Result<QString> added = addReliefPattern(
            *m_bench.relief(), {name, m_parts.library->targetFolder(), m_unit}, progress);
        if (added) {
            m_parts.library->showPattern(added.value());
            emit said(tr("Added to the library."), lineMs);
        } else if (!progress.cancelled()) {
            showFailure(m_window, added.failure());
        }
    } catch (const std::bad_alloc &) {
        showFailure(m_window, shortOfMemory());
    }
}

void PlaceController::setUnit(int unit)
{
    m_unit = unit;
    m_parts.panel->setUnit(unit);
}

void PlaceController::setupControls(CommandSet &commands) const
{
    const QString placing = reason();
    if (isPlacing()) {
        for (const char *id : stopped)
            commands.setReason(id, placing);
    }
    m_parts.library->setReasons(placing.isEmpty() ? reasonAgainstSaving(m_bench) : placing,
                                reasonAgainstEditing(m_bench));
    const Relief *relief = m_bench.relief();
    m_parts.library->setSelectionPresent(relief && relief->selectionActive);
}

QString PlaceController::reason() const
{
    return isPlacing() ? tr("Apply the pattern or cancel it (Esc) first.") : QString();
}

} // namespace marlowen

#include "workbench/workbench.h"

#include "files/workspacefile.h"
#include "relief/grid/relief.h"
#include "relief/tools/tool.h"

#include <QScopedValueRollback>

#include <new>
#include <utility>

namespace marlowen {

Workbench::Workbench(QObject *parent)
    : QObject(parent)
{
    m_session.changed = [this] { _importEdited(); };
    m_session.shown = [this] { _show(); };
}

void Workbench::take(std::unique_ptr<Relief> relief, QString file, SculptUndo *recovered)
{
    _settle();
    m_engine.attach(nullptr, nullptr);
    // Events refer to their relief: those of the old one go before it does.
    m_history.clear();
    model.reset();
    const std::unique_ptr<Relief> old = std::exchange(m_relief, std::move(relief));
    m_file = std::move(file);
    m_engine.attach(m_relief.get(), &m_history);
    m_session.attach(m_relief.get());
    m_changes.setRelief(m_relief.get());
    if (recovered)
        m_history.adopt(*recovered);
    m_announced = m_saved = m_history.state();
    m_unrecorded = m_modified = recovered != nullptr;
    emit replaced();
    emit modifiedChanged(m_modified);
    emit changed();
    emit stepDone({Step::Opened, m_relief ? m_relief->rect() : QRect(), {}});
}

Outcome Workbench::save(const QString &file)
{
    if (!m_relief)
        return {};
    _settle();
    if (const Outcome written = saveWorkspace(*m_relief, file); !written)
        return written;
    m_file = file;
    m_saved = m_history.state();
    m_unrecorded = m_modified = false;
    emit modifiedChanged(false);
    emit stepDone({Step::Saved, {}, {}});
    return {};
}

Outcome Workbench::apply(const Operation &operation, Progress *progress)
{
    if (!m_relief)
        return {};
    _settle();
    m_changes.collect();
    const Outcome done = _run(operation, {&m_history, progress});
    if (operation.isWork) {
        _announce(Step::Edit);
    } else {
        _show();
        emit selectionEdited();
    }
    return done;
}

Outcome Workbench::_run(const Operation &operation, const EditRun &run)
{
    const uint64_t before = run.undo->state();
    try {
        const Outcome done = operation.run(*m_relief, run);
        if (run.undo->state() != before)
            run.undo->nameStep(operation.name);
        return done;
    } catch (const std::bad_alloc &) {
        return _shortOfMemory();
    }
}

Failure Workbench::_shortOfMemory()
{
    return {QStringLiteral("Edit Failed"), tr("There is not enough memory for this step.")};
}

void Workbench::endStroke()
{
    if (!m_engine.stroking())
        return;
    m_changes.collect();
    m_engine.endStroke(QPointF(), false);
    m_changes.collectStroke();
    strokeEnded();
}

void Workbench::strokeEnded()
{
    if (!m_relief)
        return;
    _announce(Step::Stroke);
    if (tool.type == Tool::Magic)
        emit selectionEdited();
}

/// Everything but a stroke begins here.
void Workbench::_settle()
{
    endStroke();
    m_preview.drop();
    m_session.compare(false);
}

void Workbench::undo()
{
    _settle();
    if (!m_history.canUndo())
        return;
    m_history.undo();
    _announce(Step::Undo);
}

void Workbench::redo()
{
    _settle();
    if (!m_history.canRedo())
        return;
    m_history.redo();
    _announce(Step::Redo);
}

void Workbench::acceptImport()
{
    if (!m_session.active())
        return;
    _settle();
    const QScopedValueRollback accepting(m_accepting, true);
    m_session.accept();
}

void Workbench::_importEdited()
{
    // Without an import the controls only choose how the next file is opened.
    if (m_accepting || m_session.active())
        _announce(m_accepting ? Step::Accept : Step::Import);
    emit importChanged();
}

void Workbench::_show()
{
    m_changes.notify();
    emit changed();
}

/// Whether the relief changed since its changes were last collected.
bool Workbench::_touched() const
{
    return m_relief->heightsChanged || m_relief->appearanceChanged ||
           !m_relief->frameRegion.isEmpty();
}

void Workbench::_announce(Step::Kind kind)
{
    const bool recorded = std::exchange(m_announced, m_history.state()) != m_history.state();
    const bool import = kind == Step::Import || kind == Step::Accept;
    const bool unrecorded = import || (kind == Step::Edit && !recorded && _touched());
    m_unrecorded = m_unrecorded || unrecorded;
    _setModified(m_unrecorded || m_history.state() != m_saved);
    _show();
    if (!recorded && !unrecorded)
        return;
    Step step{kind, unrecorded ? m_relief->rect() : QRect(), {}};
    if (recorded)
        step.events = kind == Step::Undo ? m_history.stepToRedo() : m_history.stepToUndo();
    for (const std::unique_ptr<SculptUndoEvent> &event : step.events)
        step.cells |= event->cells();
    emit stepDone(step);
}

void Workbench::_setModified(bool modified)
{
    if (std::exchange(m_modified, modified) != modified)
        emit modifiedChanged(modified);
}

} // namespace marlowen

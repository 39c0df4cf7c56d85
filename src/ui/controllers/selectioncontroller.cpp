#include "ui/controllers/selectioncontroller.h"

#include "relief/grid/relief.h"
#include "relief/selection/selectionedits.h"
#include "relief/selection/selections.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/pages/editpage.h"
#include "workbench/workbench.h"

#include <QAction>

namespace marlowen {

SelectionController::SelectionController(Workbench &bench, EditPage *page, QObject *parent)
    : QObject(parent)
    , m_bench(bench)
    , m_page(page)
{
    connect(&m_bench, &Workbench::replaced, this, [this] { m_last.reset(); });
}

void SelectionController::connectCommands(const CommandSet &commands)
{
    const auto on = [&](const char *id, auto slot) {
        connect(commands[id], &QAction::triggered, this, slot);
    };
    on("selectNone", &SelectionController::_none);
    on("reselect", &SelectionController::_reselect);
    on("selectAll", [this] { m_bench.apply(selectionOperation(selectAll)); });
    on("selectInvert", [this] { _change([](Relief &r, int) { return invertSelection(r); }); });
    on("selectGrow", [this] { _change(growSelection); });
    on("selectShrink", [this] { _change(shrinkSelection); });
}

void SelectionController::_none()
{
    if (const Relief *relief = m_bench.relief(); relief && relief->selectionActive)
        m_last = selectedCells(*relief);
    m_bench.apply(selectionOperation(selectNone));
}

bool SelectionController::_canReselect() const
{
    const Relief *relief = m_bench.relief();
    return relief && m_last && m_last->width() == relief->width() &&
           m_last->height() == relief->height();
}

void SelectionController::_reselect()
{
    if (_canReselect())
        m_bench.apply(selectionOperation([this](Relief &relief) { selectCells(relief, *m_last); }));
}

void SelectionController::_change(bool (*edit)(Relief &relief, int cells))
{
    bool done = false;
    const int cells = m_page->growBy();
    m_bench.apply(selectionOperation([&](Relief &relief) { done = edit(relief, cells); }));
    if (!done)
        emit said(tr("The selection would become empty."), 5000);
}

void SelectionController::setupControls(CommandSet &commands) const
{
    const Relief *relief = m_bench.relief();
    const bool selected = relief && relief->selectionActive;
    commands.setReason("selectAll", reasonAgainstSaving(m_bench));
    for (const char *id : {"selectNone", "selectInvert", "selectGrow", "selectShrink"})
        commands[id]->setEnabled(selected);
    commands["reselect"]->setEnabled(_canReselect());
}

} // namespace marlowen

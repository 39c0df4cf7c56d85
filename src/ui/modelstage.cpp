#include "ui/modelstage.h"

#include "render/views/facetwin.h"
#include "ui/centerarea.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/panels/sculptpanels.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/windowparts.h"
#include "workbench/workbench.h"

namespace marlowen {

ModelStage::ModelStage(const Parts &parts)
    : m_parts(parts)
    , m_pageBefore(parts.ribbon.currentPage())
{
    _showHistory(false);
}

void ModelStage::refresh()
{
    const bool shown = m_parts.bench.model != nullptr;
    m_parts.center.showModel(shown);
    m_parts.panels.setEnabled(!shown);
    _showPage(shown);
    _showHistory(shown);
    if (shown)
        m_parts.center.facetWin()->setFocus();
}

void ModelStage::_showPage(bool shown)
{
    RibbonBar &ribbon = m_parts.ribbon;
    constexpr int page = WindowPages::OrientScale;
    if (shown && ribbon.currentPage() != page)
        m_pageBefore = ribbon.currentPage();
    if (!shown && ribbon.currentPage() == page)
        // The page Export is hidden while the import of the model is open.
        ribbon.setCurrentPage(
            ribbon.isPageVisible(m_pageBefore) ? m_pageBefore : int(WindowPages::SculptingTools));
    ribbon.setPageVisible(page, shown);
    if (shown)
        ribbon.setCurrentPage(page);
}

void ModelStage::_showHistory(bool shown)
{
    const QString reason = shown ? reasonAgainstEditing(m_parts.bench) : QString();
    m_parts.bench.history().setActions(nullptr, nullptr);
    for (const char *id : {"undo", "redo"})
        m_parts.commands.setReason(id, reason);
    if (!shown)
        m_parts.bench.history().setActions(m_parts.commands["undo"], m_parts.commands["redo"]);
}

} // namespace marlowen

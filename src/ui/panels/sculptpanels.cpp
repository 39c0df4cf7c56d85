#include "ui/panels/sculptpanels.h"

#include "ui/panels/importpanel.h"
#include "ui/panels/panelcontrols.h"
#include "ui/panels/toolpanel.h"

#include <QScrollArea>

namespace marlowen {

SculptPanels::SculptPanels(ImportSession *session, QWidget *parent)
    : QTabWidget(parent)
    , m_tool(new ToolPanel)
    , m_import(new ImportPanel(session))
{
    setDocumentMode(true);
    addTab(scrolling(m_tool), tr("Tool"));
    addTab(m_import, tr("Import"));
}

void SculptPanels::showImportTab()
{
    setCurrentIndex(1);
    m_import->scrollToTop();
}

} // namespace marlowen

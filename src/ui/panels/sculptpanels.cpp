#include "ui/panels/sculptpanels.h"

#include "ui/panels/importpanel.h"
#include "ui/panels/toolpanel.h"

#include <QScrollArea>
#include <QScrollBar>

namespace marlowen {

namespace {

QScrollArea *scrolling(QWidget *panel)
{
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setWidget(panel);
    area->setMinimumWidth(panel->minimumSizeHint().width() +
                          area->verticalScrollBar()->sizeHint().width());
    return area;
}

} // namespace

SculptPanels::SculptPanels(ImportSession *session, QWidget *parent)
    : QTabWidget(parent)
    , m_tool(new ToolPanel)
    , m_import(new ImportPanel(session))
{
    setDocumentMode(true);
    addTab(scrolling(m_tool), tr("Tool"));
    addTab(scrolling(m_import), tr("Import"));
}

} // namespace marlowen

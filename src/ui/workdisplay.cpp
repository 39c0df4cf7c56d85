#include "ui/workdisplay.h"

#include "render/views/sculptwin.h"
#include "ui/centerarea.h"
#include "ui/mainwindow.h"
#include "ui/modelstage.h"
#include "ui/panels/importpanel.h"
#include "ui/panels/sculptpanels.h"
#include "ui/ribbon/ribbonbackstage.h"
#include "ui/statusline.h"

#include <QTimer>

namespace marlowen {

WorkDisplay::WorkDisplay(const Parts &parts, MainWindow *window)
    : QObject(window)
    , m_parts(parts)
    , m_window(window)
{
    connect(&parts.bench, &Workbench::replaced, this, &WorkDisplay::_reliefReplaced);
    connect(&parts.bench, &Workbench::stepDone, this, &WorkDisplay::_stepDone);
    connect(&parts.bench, &Workbench::importChanged, parts.panels.importPanel(),
            &ImportPanel::refresh);
}

void WorkDisplay::_reliefReplaced()
{
    m_window->backstage()->setOpen(false);
    m_parts.center.showRelief();
    m_parts.panels.importPanel()->refresh();
    m_parts.import.opened();
    if (m_parts.bench.session().active())
        m_parts.panels.showImportTab();
    else
        m_parts.panels.showToolTab();
    m_parts.edits.startSize();
    // The views know their size only after the first layout.
    QTimer::singleShot(0, &m_parts.center, &CenterArea::fit);
}

void WorkDisplay::showModel()
{
    m_window->backstage()->setOpen(false);
    m_parts.stage.refresh();
    m_window->reliefDirtyChanged(false); // the title names the model
    m_window->showRelief();
    QTimer::singleShot(0, &m_parts.center, &CenterArea::fit);
}

void WorkDisplay::_stepDone(const Step &step)
{
    if (step.kind == Step::Undo || step.kind == Step::Redo)
        m_parts.status.nameStep(step);
    if (step.kind != Step::Accept)
        return;
    m_parts.edits.startSize();
    m_parts.panels.showToolTab();
    m_parts.center.sculptWin()->setFocus();
    m_window->showRelief();
}

} // namespace marlowen

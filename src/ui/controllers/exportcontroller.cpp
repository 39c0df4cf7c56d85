#include "ui/controllers/exportcontroller.h"

#include "base/qevsettings.h"
#include "files/drafteonmap.h"
#include "files/stlwriter.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/forcedexit.h"
#include "ui/progressbox.h"
#include "workbench/workbench.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QWidget>

namespace marlowen {

ExportController::ExportController(Workbench &bench, QWidget *window)
    : QObject(window)
    , forcedExit(exitAtOnce)
    , m_bench(bench)
    , m_window(window)
{
}

void ExportController::exportStl()
{
    if (!m_bench.relief())
        return;
    m_bench.endStroke();
    const QString name = QFileInfo(m_bench.file()).completeBaseName();
    const QString path =
        askForTarget(m_window, {tr("Export"), tr("Export (*.stl);;"), QStringLiteral("stl"),
                                QStringLiteral(".stl"), QevSettings().lastExportFolder(), name});
    if (path.isEmpty())
        return;
    ProgressBox progress(tr("Exporting"), m_window);
    const Outcome written = exportGridStl(*m_bench.relief(), path, &progress);
    if (!written && !progress.cancelled())
        return showFailure(m_window, written.failure(), path);
    if (!written)
        return;
    QevSettings().setLastExportFile(path);
    emit said(tr("Exported."), 3000);
}

void ExportController::handOver()
{
    if (!m_bench.relief() || m_handOverPath.isEmpty())
        return;
    m_bench.endStroke();
    if (const Outcome sent = exportDrafteonMap(*m_bench.relief(), m_handOverPath); !sent)
        return showFailure(m_window, sent.failure(), m_handOverPath);
    m_handedOver = true;
    emit handedOver();
    armForcedExit(forcedExit);
    QCoreApplication::quit();
}

void ExportController::setupControls(CommandSet &commands) const
{
    for (const char *id : {"exportStl", "sendToDrafteon"})
        commands.setReason(id, reasonAgainstSaving(m_bench));
    commands["sendToDrafteon"]->setVisible(!m_handOverPath.isEmpty());
}

} // namespace marlowen

#include "ui/controllers/exportcontroller.h"

#include "base/qevsettings.h"
#include "files/drafteonmap.h"
#include "files/formats.h"
#include "files/patternfile.h"
#include "relief/grid/relief.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/controllers/exportestimate.h"
#include "ui/forcedexit.h"
#include "ui/library/patternstore.h"
#include "ui/pages/exportpage.h"
#include "ui/progressbox.h"
#include "workbench/workbench.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QWidget>

#include <new>

namespace marlowen {

namespace {

constexpr int lineMs = 6000;
/// Files of more bytes are asked about.
constexpr uint64_t largeFile = 200'000'000;
constexpr uint64_t bytesOfMegabyte = 1'000'000;

Failure shortOfMemory()
{
    return {ExportController::tr("Export Failed"),
            ExportController::tr("There is not enough memory for this mesh.")};
}

} // namespace

ExportController::ExportController(Workbench &bench, ExportPage *page, QWidget *window)
    : QObject(window)
    , forcedExit(exitAtOnce)
    , m_bench(bench)
    , m_page(page)
    , m_window(window)
    , m_estimate(new ExportEstimate(bench, this))
{
    m_estimate->setOptions(page->options());
    connect(page, &ExportPage::optionsChanged, this,
            [this] { m_estimate->setOptions(m_page->options()); });
    connect(m_estimate, &ExportEstimate::changed, this, &ExportController::_showForecast);
}

void ExportController::setPageShown(bool shown)
{
    m_estimate->setShown(shown);
}

void ExportController::setUnit(int unit)
{
    m_unit = unit;
    m_page->setUnit(unit);
    _showForecast();
}

void ExportController::_showForecast()
{
    if (m_estimate->known())
        m_page->showForecast(m_estimate->forecast(), m_estimate->ended());
    else
        m_page->clearForecast();
}

QString ExportController::_askForTarget(const Format &format) const
{
    const QString name = QFileInfo(m_bench.file()).completeBaseName();
    const QString suffix = QLatin1String(format.ending);
    return askForTarget(m_window, {tr("Export"), tr("Export (*%1);;").arg(suffix), suffix.mid(1),
                                   suffix, QevSettings().lastExportFolder(), name});
}

void ExportController::_exportMesh(MeshFormat format)
{
    if (!m_bench.relief() || dialogsOpen())
        return;
    m_bench.endStroke();
    const QString path = _askForTarget(meshFormat(format));
    if (path.isEmpty())
        return;
    try {
        if (!_reduce() || !_mayBeLarge(format))
            return;
        ProgressBox progress(tr("Exporting"), m_window);
        const MeshTarget target{path, format, &progress};
        const FacetReducer *reduction = m_estimate->reduction();
        const Result<MeshReport> written =
            reduction ? exportMesh(*m_bench.relief(), m_page->options(), target, *reduction)
                      : exportMesh(*m_bench.relief(), m_page->options(), target);
        if (written)
            _written(path, tr("Exported %1")
                               .arg(m_page->facetsText(written.value().facets,
                                                       written.value().largestErrorInches)));
        else if (!progress.cancelled())
            showFailure(m_window, written.failure(), path);
    } catch (const std::bad_alloc &) {
        showFailure(m_window, shortOfMemory());
    }
}

/// Ends the reduction that the page has begun; false when it was cancelled.
bool ExportController::_reduce()
{
    ProgressBox progress(tr("Reducing Facets"), m_window);
    return m_estimate->finish([&] {
        const MeshForecast &now = m_estimate->forecast();
        progress.describe(m_page->facetsText(now.facets, now.largestErrorInches));
        progress.advance(m_estimate->reduction()->progress());
        return !progress.cancelled();
    });
}

bool ExportController::_mayBeLarge(MeshFormat format)
{
    const uint64_t bytes = fileBytes(format, m_estimate->forecast().facets);
    if (bytes <= largeFile)
        return true;
    QMessageBox box(QMessageBox::Question, tr("Export"),
                    tr("The file will be about %1 MB large.")
                        .arg(QLocale().toString(static_cast<qulonglong>(bytes / bytesOfMegabyte))),
                    QMessageBox::Save | QMessageBox::Cancel, m_window);
    box.setInformativeText(tr("A lower quality or a limit in \"Model Size\" makes it smaller."));
    box.button(QMessageBox::Save)->setText(tr("Export"));
    box.setDefaultButton(QMessageBox::Save);
    return box.exec() == QMessageBox::Save;
}

void ExportController::exportPattern()
{
    if (!m_bench.relief() || dialogsOpen())
        return;
    m_bench.endStroke();
    const QString path = _askForTarget(patternFormat());
    if (path.isEmpty())
        return;
    ProgressBox progress(tr("Exporting"), m_window);
    const Relief &relief = *m_bench.relief();
    const PatternToSave pattern{attributesOfUser(path, m_unit), relief.zScale, heightView(relief)};
    const Outcome written = savePattern(pattern, path, progress);
    if (written)
        _written(path, tr("Exported."));
    else if (!progress.cancelled())
        showFailure(m_window, written.failure(), path);
}

void ExportController::_written(const QString &path, const QString &line)
{
    QevSettings().setLastExportFile(path);
    emit said(line, lineMs);
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
    for (const char *id : {"exportStl", "exportObj", "exportPtr", "sendToDrafteon"})
        commands.setReason(id, reasonAgainstSaving(m_bench));
    commands["sendToDrafteon"]->setVisible(!m_handOverPath.isEmpty());
}

} // namespace marlowen

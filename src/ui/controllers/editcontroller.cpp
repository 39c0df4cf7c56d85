#include "ui/controllers/editcontroller.h"

#include "import/openfile.h"
#include "relief/grid/heightscan.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "relief/operations/operations.h"
#include "relief/selection/selections.h"
#include "relief/tools/tool.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/pages/editpage.h"
#include "ui/progressbox.h"
#include "workbench/workbench.h"

#include <QAction>
#include <QCoreApplication>
#include <QWidget>

#include <cmath>

namespace marlowen {

namespace {

int cellsOf(double inches)
{
    return qMax(2, static_cast<int>(std::lround(inches * cellsPerInch)));
}

/// Without a usable Z scale a height counts as at scale 1.
double inchesPerHeight(const Relief *relief)
{
    const double zScale = relief && relief->zScale > 0.0 ? relief->zScale : 1.0;
    return zScale / cellsPerInch;
}

double peakOf(const Relief &relief)
{
    return scanHeights({relief.heights().constData(), static_cast<size_t>(relief.cells())}).maximum;
}

} // namespace

EditController::EditController(Workbench &bench, const Pages &pages, QWidget *window)
    : QObject(window)
    , m_bench(bench)
    , m_pages(pages)
    , m_window(window)
{
    connect(&m_bench, &Workbench::replaced, this,
            [this] { m_imported = takesImportSettings(m_bench.file()); });
}

void EditController::apply(const Operation &operation)
{
    const QByteArray name = operation.name.toLatin1();
    ProgressBox progress(QCoreApplication::translate("Commands", name.constData()), m_window);
    if (const Outcome done = m_bench.apply(operation, &progress); !done)
        showFailure(m_window, done.failure());
}

void EditController::applySize(const SizeWish &inches)
{
    const Relief *relief = m_bench.relief();
    if (!relief || m_bench.session().active())
        return;
    m_bench.endStroke();
    const double area = inches[0] * inches[1];
    if (exceedsAreaLimit(area))
        return showFailure(m_window, sizeLimitFailure(area));
    const double highest = m_bench.changes().heightRange().maximum;
    const double zNow = highest * relief->zScale / cellsPerInch;
    const bool zAsked = highest > 0.0 && std::abs(inches[2] - zNow) > 1e-9 && inches[2] > 0.0;
    const int width = cellsOf(inches[0]);
    const int height = cellsOf(inches[1]);
    const double zInches = inches[2];
    const char *step = QT_TRANSLATE_NOOP("Commands", "Size");
    apply({QLatin1String(step), [=](Relief &sized, const EditRun &run) {
               resize(sized, width, height, {run.undo, run.progress, !zAsked});
               // The peak that is scaled is that of the resampled heights.
               const double peak = zAsked && !run.cancelled() ? peakOf(sized) : 0.0;
               if (peak > 0.0)
                   setZScale(sized, zInches * cellsPerInch / peak, run);
               run.undo->markGroupEnd();
               return Outcome();
           }});
}

bool EditController::applyCrop(const QList<QPointF> &outline)
{
    if (outline.isEmpty() || m_bench.tool.type != Tool::Crop ||
        !reasonAgainstEditing(m_bench).isEmpty())
        return false;
    apply(operation("crop", {.points = outline}));
    return true;
}

void EditController::connectCommands(const CommandSet &commands)
{
    for (const OperationRow &row : operationTable()) {
        if (row.group != OperationGroup::None)
            connect(commands[row.id], &QAction::triggered, this, [this, &row] { run(row.id); });
    }
}

void EditController::showSample()
{
    const Relief *relief = m_bench.relief();
    const double height = relief ? double(relief->sampleHeight) : 0.0;
    m_pages.edit->showSample(height * inchesPerHeight(relief), m_pages.size->unit());
}

void EditController::sampleEdited()
{
    Relief *relief = m_bench.relief();
    if (relief)
        relief->sampleHeight = static_cast<float>(m_pages.edit->sample() / inchesPerHeight(relief));
}

void EditController::showSize()
{
    const Relief *relief = m_bench.relief();
    // A preview changes with every move of the hand; its heights are not the relief's yet.
    if (!relief || m_bench.preview().active())
        return;
    const double highest = m_bench.changes().heightRange().maximum;
    const std::array<double, 3> now = {relief->width() / cellsPerInch,
                                       relief->height() / cellsPerInch,
                                       highest * relief->zScale / cellsPerInch};
    if (m_openedSize[0] <= 0.0 || m_bench.session().active())
        m_openedSize = now;
    m_pages.size->showSize({now, m_openedSize, m_imported}, reasonAgainstEditing(m_bench));
    showSample();
}

void EditController::startSize()
{
    m_openedSize = {};
    showSize();
}

void EditController::setupControls(CommandSet &commands, bool cropDrawn) const
{
    const QString reason = reasonAgainstEditing(m_bench);
    for (const OperationRow &row : operationTable()) {
        if (row.group != OperationGroup::None)
            commands.setReason(row.id, reason);
    }
    commands["cropApply"]->setEnabled(reason.isEmpty() && m_bench.tool.type == Tool::Crop &&
                                      cropDrawn);
}

} // namespace marlowen

#include "ui/mainwindow.h"

#include "base/qevsettings.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "relief/operations/operations.h"
#include "relief/selection/selections.h"
#include "relief/tools/alphabrush.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/commandset.h"
#include "ui/materialeditor.h"
#include "ui/pages/editpage.h"
#include "ui/pages/toolspage.h"
#include "ui/pages/viewsettingspage.h"
#include "ui/panels/sculptpanels.h"
#include "ui/panels/toolpanel.h"

#include "ui/progressbox.h"

#include <QColorDialog>
#include <QMessageBox>

#include <cmath>
#include <utility>

namespace marlowen {

// Commands that work on the relief, the tool and the look of the views.

namespace {

int cellsOf(double inches)
{
    return qMax(2, static_cast<int>(std::lround(inches * cellsPerInch)));
}

} // namespace

template <typename Value>
void MainWindow::_setParam(Value ToolParams::*member, Value value)
{
    if (m_bench.tool.*member == value)
        return;
    m_bench.tool.*member = value;
    _showTool();
}

/// Shows the record in the panel, on the ribbon and in the views' footprints.
void MainWindow::_showTool()
{
    const auto type = static_cast<Tool::Type>(m_bench.tool.type);
    m_panels->toolPanel()->showParams(m_bench.tool);
    m_tools->showTool(type);
    m_toolsPage->showLimit(type, m_bench.tool.ceilingOrFloor, _reasonAgainstEditing());
    m_editPage->showParams(m_bench.tool);
    m_sculptWin->refresh();
    m_flatWin->refresh();
}

void MainWindow::toolChanged(Tool::Type type)
{
    m_bench.endStroke();
    m_bench.tool.type = type;
    m_bench.tool.ceilingOrFloor = false;
    _showTool();
    setupControls();
}

void MainWindow::toolStrengthUpdated(double strength)
{
    m_bench.tool.strength = strength;
    _showTool();
}

void MainWindow::toolSizeUpdated(double size)
{
    m_bench.tool.size = size;
    _showTool();
}

void MainWindow::toolKeepTransparencyUpdated(bool on)
{
    _setParam(&ToolParams::keepTransparency, on);
}

void MainWindow::toolModeUpdated(Tool::Mode mode)
{
    _setParam(&ToolParams::mode, static_cast<int32_t>(mode));
}

void MainWindow::toolHardnessUpdated(double hardness)
{
    _setParam(&ToolParams::hardness, hardness);
}

void MainWindow::toolUseDecayLengthUpdated(bool on)
{
    _setParam(&ToolParams::useDecay, on);
}

void MainWindow::decayLengthUpdated(double length)
{
    _setParam(&ToolParams::decayLength, length);
}

void MainWindow::toolUseSmoothingUpdated(bool on)
{
    _setParam(&ToolParams::smoothToolPaths, on);
}

void MainWindow::toolSmoothLengthChanged(int points)
{
    _setParam(&ToolParams::smoothLength, static_cast<int32_t>(points));
}

void MainWindow::toolFormUpdated(Tool::Form form)
{
    _setParam(&ToolParams::form, static_cast<int32_t>(form));
}

void MainWindow::toolFalloffUpdated(Tool::Falloff falloff)
{
    _setParam(&ToolParams::falloff, static_cast<int32_t>(falloff));
}

void MainWindow::toolAspectUpdated(double aspect)
{
    _setParam(&ToolParams::aspect, aspect);
}

void MainWindow::toolAngleUpdated(double degrees)
{
    _setParam(&ToolParams::angle, degrees);
}

void MainWindow::ceilingOrFloorChanged(bool on)
{
    _setParam(&ToolParams::ceilingOrFloor, on);
}

void MainWindow::toleranceChanged(double tolerance)
{
    _setParam(&ToolParams::tolerance, tolerance);
}

void MainWindow::continuousSelectionChanged(bool on)
{
    _setParam(&ToolParams::continuous, on);
}

void MainWindow::symmetryXChanged(bool on)
{
    if (Relief *relief = m_bench.relief())
        relief->symmetryX = on;
    _refreshViews();
}

void MainWindow::symmetryYChanged(bool on)
{
    if (Relief *relief = m_bench.relief())
        relief->symmetryY = on;
    _refreshViews();
}

void MainWindow::invertChanged(bool on)
{
    if (Relief *relief = m_bench.relief())
        relief->invert = on;
}

void MainWindow::alphaChanged()
{
    m_panels->toolPanel()->refreshAlpha();
    _refreshViews();
}

void MainWindow::_refreshViews()
{
    m_sculptWin->refresh();
    m_flatWin->refresh();
}

/// What of the relief is shown outside the views.
void MainWindow::_showRelief()
{
    const Relief *relief = m_bench.relief();
    if (!relief)
        return;
    m_panels->toolPanel()->showRelief(relief->symmetryX, relief->symmetryY, relief->invert);
    setupControls();
    _showSize();
}

void MainWindow::_showSize()
{
    const Relief *relief = m_bench.relief();
    if (!relief)
        return;
    const double highest = m_bench.changes().heightRange().maximum;
    const std::array<double, 3> now = {relief->width() / cellsPerInch,
                                       relief->height() / cellsPerInch,
                                       highest * relief->zScale / cellsPerInch};
    if (m_openedSize[0] <= 0.0 || m_bench.importOpen())
        m_openedSize = now;
    m_sizePage->showSize({now, m_openedSize}, _reasonAgainstEditing());
    _showZoom();
}

/// X and Y resample the grid, Z sets the height scale; together they are one step back.
void MainWindow::sizeWanted(const SizeWish &inches)
{
    Relief *relief = m_bench.relief();
    if (!relief || m_bench.importOpen())
        return;
    m_bench.endStroke();
    const double area = inches[0] * inches[1];
    if (exceedsAreaLimit(area)) {
        QMessageBox::critical(this, tr(sizeMessageTitle), sizeLimitSentence(area));
        return;
    }
    const double highest = m_bench.changes().heightRange().maximum;
    const double zNow = highest * relief->zScale / cellsPerInch;
    const bool zAsked = highest > 0.0 && std::abs(inches[2] - zNow) > 1e-9 && inches[2] > 0.0;
    const int width = cellsOf(inches[0]);
    const int height = cellsOf(inches[1]);
    const double zScale = zAsked ? inches[2] * cellsPerInch / highest : relief->zScale;
    _apply({QStringLiteral("Size"), [=](Relief &sized, const EditRun &run) {
                marlowen::resize(sized, width, height, {run.undo, run.progress, !zAsked});
                if (!run.cancelled())
                    setZScale(sized, zScale, run);
                return Outcome();
            }});
}

/// Runs an edit with a progress box and shows why it failed.
void MainWindow::_apply(const Operation &operation)
{
    ProgressBox progress(tr(operation.name.toLatin1().constData()), this);
    if (const Outcome done = m_bench.apply(operation, &progress); !done)
        _show(done.failure());
}

void MainWindow::applyCrop()
{
    Relief *relief = m_bench.relief();
    const QList<QPointF> outline = m_flatWin->cropOutline();
    if (!relief || outline.isEmpty() || m_bench.tool.type != Tool::Crop || m_bench.importOpen())
        return;
    _apply(cropOperation(outline));
    m_flatWin->cancelShape();
}

void MainWindow::clearMaskClicked()
{
    _apply(clearMaskOperation());
}

void MainWindow::invertMaskClicked()
{
    _apply(invertMaskOperation());
}

void MainWindow::selectNoneClicked()
{
    m_bench.endStroke();
    m_flatWin->selectNone();
    setupControls();
}

void MainWindow::selectionModifierChanged(SelectionModifier modifier)
{
    m_bench.engine().setSelectionModifier(modifier);
    m_flatWin->setSelectionModifier(modifier);
}

void MainWindow::sampleChanged(double height)
{
    m_editPage->showSample(height);
}

void MainWindow::sampleEdited()
{
    if (Relief *relief = m_bench.relief())
        relief->sampleHeight = static_cast<float>(m_editPage->sample());
}

void MainWindow::setLightPos(int index)
{
    m_sculptWin->setLightPos(index);
}

void MainWindow::chooseMaterial(const QString &name)
{
    m_materials->choose(name);
}

void MainWindow::_applyMaterial()
{
    m_viewSettings->showMaterials(*m_materials);
    m_sculptWin->setMaterial(m_materials->current());
}

void MainWindow::setMaterialColor(int term)
{
    static constexpr const char *titles[] = {"Choose Ambient Material", "Choose Diffuse Material",
                                             "Choose Specular Material"};
    const QColor color =
        QColorDialog::getColor(m_materials->color(term), this, tr(titles[qBound(0, term, 2)]),
                               QColorDialog::ShowAlphaChannel);
    m_materials->setColor(term, color);
}

void MainWindow::setMaterialShinyness(int value)
{
    m_materials->setShininess(value);
}

void MainWindow::materialEditChanged(const QString &name)
{
    m_materialName = name;
}

void MainWindow::materialNameFinished()
{
    const QString name = std::exchange(m_materialName, QString()).trimmed();
    if (name.isEmpty() || name == m_materials->current().name)
        return m_viewSettings->showMaterials(*m_materials);
    if (const Outcome renamed = m_materials->rename(name); !renamed) {
        m_viewSettings->showMaterials(*m_materials);
        _show(renamed.failure());
    }
}

void MainWindow::cloneOkClicked()
{
    if (const Outcome cloned = m_materials->clone(); !cloned)
        _show(cloned.failure());
}

void MainWindow::deleteCancelClicked()
{
    const QString name = m_materials->current().name;
    const auto yes = QMessageBox::Yes;
    if (QMessageBox::question(
            this, tr("Materials"),
            tr("Delete the material \"%1\"? This cannot be taken back.").arg(name),
            yes | QMessageBox::No, QMessageBox::No) != yes)
        return;
    if (const Outcome removed = m_materials->remove(); !removed)
        _show(removed.failure());
}

void MainWindow::colorOffsetChanged(double offset)
{
    m_flatWin->colorOffsetChanged(offset);
}

void MainWindow::quantizationChanged(double levels)
{
    m_flatWin->quantizationChanged(levels);
}

void MainWindow::cursorSizeChanged(int index)
{
    const auto choice = static_cast<size_t>(qBound(0, index, int(pointerSizes.size()) - 1));
    m_sculptWin->setCursorScale(pointerSizes[choice].percent);
}

} // namespace marlowen

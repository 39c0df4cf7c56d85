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
    if (m_params.*member == value)
        return;
    m_params.*member = value;
    _showTool();
}

/// Shows the record in the panel, on the ribbon and in the views' footprints.
void MainWindow::_showTool()
{
    const auto type = static_cast<Tool::Type>(m_params.type);
    m_panels->toolPanel()->showParams(m_params);
    m_tools->showTool(type);
    m_toolsPage->showLimit(type, m_params.ceilingOrFloor, _reasonAgainstEditing());
    m_editPage->showParams(m_params);
    m_sculptWin->refresh();
    m_flatWin->refresh();
}

void MainWindow::toolChanged(Tool::Type type)
{
    m_document.endStroke();
    m_params.type = type;
    m_params.ceilingOrFloor = false;
    _showTool();
    setupControls();
}

void MainWindow::toolStrengthUpdated(double strength)
{
    m_params.strength = strength;
    _showTool();
}

void MainWindow::toolSizeUpdated(double size)
{
    m_params.size = size;
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
    if (Relief *relief = m_document.relief())
        relief->symmetryX = on;
}

void MainWindow::symmetryYChanged(bool on)
{
    if (Relief *relief = m_document.relief())
        relief->symmetryY = on;
}

void MainWindow::invertChanged(bool on)
{
    if (Relief *relief = m_document.relief())
        relief->invert = on;
}

void MainWindow::alphaChanged()
{
    m_panels->toolPanel()->refreshAlpha();
    m_sculptWin->refresh();
    m_flatWin->refresh();
}

/// What of the relief is shown outside the views.
void MainWindow::_showRelief()
{
    const Relief *relief = m_document.relief();
    if (!relief)
        return;
    m_panels->toolPanel()->showRelief(relief->symmetryX, relief->symmetryY, relief->invert);
    setupControls();
    _showSize();
}

void MainWindow::_showSize()
{
    const Relief *relief = m_document.relief();
    if (!relief)
        return;
    const double highest = m_document.changes().heightRange().maximum;
    const std::array<double, 3> now = {relief->width() / cellsPerInch,
                                       relief->height() / cellsPerInch,
                                       highest * relief->zScale / cellsPerInch};
    if (m_openedSize[0] <= 0.0 || m_document.importOpen())
        m_openedSize = now;
    m_sizePage->showSize({now, m_openedSize}, _reasonAgainstEditing());
    _showZoom();
}

/// X and Y resample the grid, Z sets the height scale; together they are one step back.
void MainWindow::sizeWanted(const SizeWish &inches)
{
    Relief *relief = m_document.relief();
    if (!relief || m_document.importOpen())
        return;
    m_document.endStroke();
    const double area = inches[0] * inches[1];
    if (exceedsAreaLimit(area)) {
        QMessageBox::critical(this, tr(sizeMessageTitle), sizeLimitSentence(area));
        return;
    }
    const double highest = m_document.changes().heightRange().maximum;
    const double zNow = highest * relief->zScale / cellsPerInch;
    const bool zAsked = highest > 0.0 && std::abs(inches[2] - zNow) > 1e-9 && inches[2] > 0.0;
    const int width = cellsOf(inches[0]);
    const int height = cellsOf(inches[1]);
    const bool resized = width != relief->width() || height != relief->height();
    if (resized)
        marlowen::resize(*relief, width, height, &m_document.history(), !zAsked);
    if (zAsked)
        marlowen::setZScale(*relief, inches[2] * cellsPerInch / highest, &m_document.history());
    if (resized || zAsked)
        m_document.edited();
}

void MainWindow::applyCrop()
{
    Relief *relief = m_document.relief();
    const QList<QPointF> outline = m_flatWin->cropOutline();
    if (!relief || outline.isEmpty() || m_params.type != Tool::Crop || m_document.importOpen())
        return;
    m_document.endStroke();
    cropApply(*relief, outline, &m_document.history());
    m_flatWin->cancelShape();
    m_document.edited();
}

void MainWindow::clearMaskClicked()
{
    if (!m_document.relief())
        return;
    m_document.endStroke();
    marlowen::clearMask(*m_document.relief(), &m_document.history());
    m_document.edited();
}

void MainWindow::invertMaskClicked()
{
    if (!m_document.relief())
        return;
    m_document.endStroke();
    marlowen::invertMask(*m_document.relief(), &m_document.history());
    m_document.edited();
}

void MainWindow::selectNoneClicked()
{
    m_document.endStroke();
    m_flatWin->selectNone();
    setupControls();
}

void MainWindow::selectionModifierChanged(SelectionModifier modifier)
{
    m_document.engine().setSelectionModifier(modifier);
    m_flatWin->setSelectionModifier(modifier);
}

void MainWindow::sampleChanged(double height)
{
    m_editPage->showSample(height);
}

void MainWindow::sampleEdited()
{
    if (Relief *relief = m_document.relief())
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

#pragma once

#include "relief/selection/selections.h"
#include "relief/tools/toolparams.h"
#include "relief/tools/tooltable.h"

#include <QObject>

class QActionGroup;
class QCheckBox;

namespace marlowen {

class CommandSet;
class NumberField;
class RibbonGroup;
class RibbonPage;
class SliderField;
class ToolActions;

/// The controls of the page "2D Edit": crop, selections, sample, height brush, fill, erase.
class EditPage : public QObject
{
    Q_OBJECT

public:
    EditPage(RibbonPage &page, CommandSet &commands, const ToolActions &tools, QObject *parent);

    static void addCommands(CommandSet &commands);

    /// Tolerance and continuity of the magic selection.
    void showParams(const ToolParams &params);
    /// Cells that Grow and Shrink go.
    int growBy() const;
    /// Shows a height of so many inches in a unit of lengthUnits. The exact height is the relief's;
    /// the field shows it rounded.
    void showSample(double inches, int unit);
    /// What the sample field holds, in inches.
    double sample() const;

signals:
    void modifierChosen(SelectionModifier modifier);
    void toleranceChanged(double tolerance);
    void continuousChanged(bool on);
    /// The user typed another sample height.
    void sampleEdited();

private:
    void _addShapes(RibbonPage &page, const ToolActions &tools);
    void _addMagic(const ToolActions &tools);
    void _addHeights(const ToolActions &tools);
    void _addTools(const ToolActions &tools, ToolGroup group);

    CommandSet &m_commands;
    RibbonGroup *m_group = nullptr;
    SliderField *m_tolerance = nullptr;
    QCheckBox *m_continuous = nullptr;
    NumberField *m_growBy = nullptr;
    NumberField *m_sample = nullptr;
    double m_inchesPerUnit = 1.0; ///< of the sample field
};

} // namespace marlowen

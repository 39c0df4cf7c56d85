#pragma once

#include "base/fieldtable.h"
#include "relief/tools/tool.h"
#include "relief/tools/toolparams.h"
#include "ui/ribbon/sliderfield.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QComboBox;

namespace marlowen {

class AlphaControls;
class ChoiceRow;

/// The controls of the tool parameters, the relief's symmetry and invert flags and the
/// alpha brush.
/// Signals carry the values of the record (strength squared, size 0.01..1), not slider positions,
/// and are emitted only for what the user changes here; show...() updates the controls silently.
///
/// What the current tool does not use is disabled, and its tool tip says why.
class ToolPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ToolPanel(QWidget *parent = nullptr);

    /// The record as the controls show it; values that were shown but lie between two steps of a
    /// control are kept exactly.
    const ToolParams &params() const { return m_params; }
    /// Shows the alpha brush of the process as well.
    void showParams(const ToolParams &params);
    void showRelief(bool symmetryX, bool symmetryY, bool invert);
    AlphaControls &alpha() { return *m_alpha; }

signals:
    void ToolChanged(Tool::Type type);
    void ToolStrengthChanged(double strength);
    void ToolSizeChanged(double size);
    void ToolKeepTransparencyChanged(bool on);
    void ToolModeChanged(Tool::Mode mode);
    void ToolHardnessChanged(double hardness);
    void ToolUseDecayLengthChanged(bool on);
    void ToolDecayLengthChanged(double length);
    void ToolUseSmoothingChanged(bool on);
    void ToolSmoothLengthChanged(int points);
    void ToolFormChanged(Tool::Form form);
    void ToolFalloffChanged(Tool::Falloff falloff);
    void ToolAspectChanged(double aspect);
    void ToolAngleChanged(double degrees);
    void ToolCeilingOrFloorChanged(bool on);
    void ToolToleranceChanged(double tolerance);
    void ToolContinuousChanged(bool on);
    void SymmetryXChanged(bool on);
    void SymmetryYChanged(bool on);
    void InvertChanged(bool on);

private:
    enum Number { Size, Strength, Hardness, Aspect, Angle, DecayLength, SmoothLength, Tolerance };
    enum Check { KeepTransparency, UseDecay, SmoothPaths, Limit, Continuous };
    enum Flag { SymmetryX, SymmetryY, Invert };
    static constexpr size_t numberCount = 8;
    static constexpr size_t checkCount = 5;
    static constexpr size_t flagCount = 3;

    using ParamField = Field<ToolParams>;
    /// A slider bound to one number of the record.
    struct NumberRow
    {
        const ParamField *field;
        void (*notify)(ToolPanel &);
    };
    /// A check box bound to one truth value of the record.
    struct CheckRow
    {
        const ParamField *field;
        void (ToolPanel::*notify)(bool);
    };
    /// A check box bound to a flag of the relief.
    struct FlagRow
    {
        const char *label;
        const char *hint;
        const char *icon;
        unsigned use;
        void (ToolPanel::*notify)(bool);
    };
    static const std::array<NumberRow, numberCount> &_numberRows();
    static const std::array<CheckRow, checkCount> &_checkRows();
    static const std::array<FlagRow, flagCount> &_flagRows();

    void _makeControls();
    void _makeNumbers();
    void _makeChecks();
    void _makeChoices();
    ChoiceRow *_makeChoice(int32_t ToolParams::*member, void (*notify)(ToolPanel &));
    void _arrange();
    void _alignLabels();
    void _toolChosen(int index);
    void _showRecord();
    void _enable();
    void _enableNumbers();
    QString _reason(unsigned use) const;
    QString _alphaReason(unsigned use, bool overridden) const;
    bool _alphaActs() const;
    QString _limitLabel() const;

    ToolParams m_params;
    std::array<SliderField *, numberCount> m_numbers{};
    std::array<QCheckBox *, checkCount> m_checks{};
    std::array<QCheckBox *, flagCount> m_flags{};
    QComboBox *m_tool = nullptr;
    ChoiceRow *m_mode = nullptr;
    ChoiceRow *m_form = nullptr;
    ChoiceRow *m_falloff = nullptr;
    AlphaControls *m_alpha = nullptr;
    QWidget *m_magic = nullptr; ///< the section that only one tool uses
};

} // namespace marlowen

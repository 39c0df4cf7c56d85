#pragma once

#include "relief/tools/tool.h"
#include "relief/tools/toolparams.h"
#include "workbench/workbench.h"

#include <QObject>

#include <array>
#include <vector>

namespace marlowen {

class EditPage;
class Relief;
class ToolActions;
class ToolPanel;
class ToolsPage;

/// The tool record and the relief's flags, and the controls that show them: a value set in one
/// control is shown in all. Size, strength and "Ceiling" / "Floor" belong to each tool; symmetry
/// and invert stay set when another relief is opened.
class ToolController : public QObject
{
    Q_OBJECT

public:
    struct Controls
    {
        ToolPanel *panel;
        ToolActions *actions;
        ToolsPage *toolsPage;
        EditPage *editPage;
    };
    ToolController(Workbench &bench, const Controls &controls, QObject *parent);

    /// Makes this the tool, with its own size, strength and limit; ends a stroke in progress.
    void choose(Tool::Type type);
    template <typename Value>
    void set(Value ToolParams::*member, Value value)
    {
        m_bench.tool.*member = value;
        show();
    }
    /// For the present relief and later ones.
    void setFlag(bool Relief::*member, bool on);
    /// The alpha brush of the process has another image, mode or repeat count.
    void alphaChanged();

    /// Shows the record in all controls.
    void show();
    /// Shows the flags of the relief.
    void showRelief();
    /// Enables the tools that can act now; the others say why they cannot.
    void setupControls();

signals:
    /// Another tool.
    void chosen();
    /// The footprint looks different.
    void changed();

private:
    /// What each tool keeps while another one is chosen.
    struct OwnValues
    {
        double size = ToolParams{}.size;
        double strength = ToolParams{}.strength;
        bool ceilingOrFloor = false;
    };
    /// A flag of the relief and the value set here.
    struct Flag
    {
        bool Relief::*member;
        bool on;
    };
    void _takeRelief();

    Workbench &m_bench;
    Controls m_controls;
    std::array<OwnValues, Tool::None + 1> m_own;
    std::vector<Flag> m_flags;
};

} // namespace marlowen

#pragma once

#include "relief/tools/tool.h"
#include "relief/tools/toolparams.h"
#include "workbench/workbench.h"

#include <QObject>

namespace marlowen {

class EditPage;
class Relief;
class ToolActions;
class ToolPanel;
class ToolsPage;

/// The tool record and the relief's flags, and the controls that show them: what is set in one
/// place shows in all.
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

    /// Makes this the tool; ends a stroke in progress.
    void choose(Tool::Type type);
    template <typename Value>
    void set(Value ToolParams::*member, Value value)
    {
        m_bench.tool.*member = value;
        show();
    }
    /// Nothing without a relief.
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
    Workbench &m_bench;
    Controls m_controls;
};

} // namespace marlowen

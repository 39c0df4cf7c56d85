#include "ui/controllers/toolcontroller.h"

#include "relief/grid/relief.h"
#include "ui/controllers/dialogs.h"
#include "ui/pages/editpage.h"
#include "ui/pages/toolspage.h"
#include "ui/panels/toolpanel.h"

namespace marlowen {

ToolController::ToolController(Workbench &bench, const Controls &controls, QObject *parent)
    : QObject(parent)
    , m_bench(bench)
    , m_controls(controls)
{
    connect(&m_bench, &Workbench::replaced, this, &ToolController::_takeRelief);
}

void ToolController::choose(Tool::Type type)
{
    m_bench.endStroke();
    ToolParams &tool = m_bench.tool;
    m_own[static_cast<size_t>(tool.type)] = {tool.size, tool.strength, tool.ceilingOrFloor};
    const OwnValues &own = m_own[static_cast<size_t>(type)];
    tool.type = type;
    tool.size = own.size;
    tool.strength = own.strength;
    tool.ceilingOrFloor = own.ceilingOrFloor;
    show();
    emit chosen();
}

void ToolController::setFlag(bool Relief::*member, bool on)
{
    std::erase_if(m_flags, [member](const Flag &flag) { return flag.member == member; });
    m_flags.push_back({member, on});
    if (Relief *relief = m_bench.relief())
        relief->*member = on;
    emit changed();
}

/// A relief starts without flags; the panel's stay.
void ToolController::_takeRelief()
{
    for (const Flag &flag : m_flags) {
        if (Relief *relief = m_bench.relief())
            relief->*flag.member = flag.on;
    }
}

void ToolController::alphaChanged()
{
    m_controls.panel->showParams(m_bench.tool);
    emit changed();
}

void ToolController::show()
{
    const ToolParams &tool = m_bench.tool;
    m_controls.panel->showParams(tool);
    m_controls.actions->showTool(static_cast<Tool::Type>(tool.type));
    m_controls.editPage->showParams(tool);
    setupControls();
    emit changed();
}

void ToolController::showRelief()
{
    if (const Relief *relief = m_bench.relief())
        m_controls.panel->showRelief(relief->symmetryX, relief->symmetryY, relief->invert);
}

void ToolController::setupControls()
{
    const QString reason = reasonAgainstEditing(m_bench);
    m_controls.actions->setReason(reason);
    m_controls.toolsPage->showLimit(static_cast<Tool::Type>(m_bench.tool.type),
                                    m_bench.tool.ceilingOrFloor, reason);
}

} // namespace marlowen

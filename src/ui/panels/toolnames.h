#pragma once

#include "relief/tools/tooltable.h"

#include <QString>

namespace marlowen {

/// A tool as people choose it; what it reads is in the engine's table.
struct ToolName
{
    Tool::Type type;
    const char *effect; ///< one sentence: what it does
};

/// Every tool but None, brushes first, in the order of the ribbon.
std::span<const ToolName> toolNames();

/// "Smooth Tool".
QString longToolName(const ToolRow &row);

/// What the tool does, in one sentence; empty for None.
QString toolEffect(Tool::Type type);

} // namespace marlowen

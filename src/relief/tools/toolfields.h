#pragma once

#include "base/fieldtable.h"
#include "relief/tools/toolparams.h"

namespace marlowen {

/// One row a tool parameter, in the order of the record. The flags are the ToolUse bits of the
/// tools that use it.
FieldTable<ToolParams> toolFields();

/// The value moved into what the parameter's control can be set to.
double onControl(double ToolParams::*member, double value);

/// Of AlphaBrush::repeatCount.
extern const FieldInfo alphaRepeatField;

} // namespace marlowen

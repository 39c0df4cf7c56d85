#pragma once

#include "cli/scriptaction.h"

#include <QString>

namespace marlowen {

/// The action "place": lays the pattern of a file onto the relief, one undo step.
ScriptAction placeAction();

/// What "place" takes, for the help.
QString placeHelp();

} // namespace marlowen

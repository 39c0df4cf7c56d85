#pragma once

#include "cli/scriptkeys.h"
#include "relief/tools/toolparams.h"

#include <QJsonObject>
#include <QString>

#include <vector>

namespace marlowen {

/// The keys of the action "tool", one a field of the tool record, with the values each may have.
const std::vector<ScriptKey> &toolKeys();

/// Sets the fields that the checked object holds; the others stay.
void changeTool(ToolParams &tool, const QJsonObject &fields);

/// The record that a script starts with, one line a field, for people to read.
QString toolRecordHelp();

} // namespace marlowen

#pragma once

#include "cli/scriptkeys.h"
#include "import/importsettings.h"

namespace marlowen {

/// The keys of an object of import settings, with their ranges.
const std::vector<ScriptKey> &importKeys();

/// The settings with the values of a checked object put in.
ImportSettings withValues(ImportSettings settings, const QJsonObject &values);

} // namespace marlowen

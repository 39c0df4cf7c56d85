#pragma once

#include "base/result.h"
#include "cli/scriptkeys.h"

#include <vector>

namespace marlowen {

class ScriptState;

/// One row a "do": its keys and what it runs. The keys are checked before `run` is called, so that
/// it can take values out of the object as they are.
struct ScriptAction
{
    const char *name;
    std::vector<ScriptKey> keys;
    Outcome (*run)(ScriptState &state, const QJsonObject &arguments);
    bool needsRelief = true; ///< fails when there is none
};

/// Every group of actions; each has its file.
const std::vector<ScriptAction> &fileActions();   ///< new, open, load, save, export, dump, info
const std::vector<ScriptAction> &importActions(); ///< import, update, accept
const std::vector<ScriptAction> &modelActions();  ///< orient, rasterize
/// tool, symmetry, invert, alpha, stroke, sample, setSample, fill, undo, redo
const std::vector<ScriptAction> &strokeActions();
const std::vector<ScriptAction> &reliefActions(); ///< select, mask, resize, zscale, crop, place

/// The row of a name; null when there is none.
const ScriptAction *findAction(const QString &name);

} // namespace marlowen

#pragma once

#include <array>

namespace marlowen {

/// One way in which a new shape combines with the selection. Texts are marked with
/// QT_TRANSLATE_NOOP("Commands", "...").
struct SelectionModifierRow
{
    const char *name;    ///< word in scripts and label of its command
    const char *command; ///< id of its command
    const char *icon;    ///< icon resource
    const char *hint;    ///< one sentence: the effect
};

/// In the order of SelectionModifier.
const std::array<SelectionModifierRow, 3> &selectionModifiers();
/// Their names, "Normal|Additive|...".
const char *selectionModifierNames();

} // namespace marlowen

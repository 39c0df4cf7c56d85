#include "relief/selection/selectionmodifiers.h"

#include <QByteArrayList>

namespace marlowen {

const std::array<SelectionModifierRow, 3> &selectionModifiers()
{
    static constexpr std::array<SelectionModifierRow, 3> rows{{
        {QT_TRANSLATE_NOOP("Commands", "Normal"), "modeNormal", "normal_selection",
         QT_TRANSLATE_NOOP("Commands", "The next shape replaces the selection.")},
        {QT_TRANSLATE_NOOP("Commands", "Additive"), "modeAdditive", "additive_selection",
         QT_TRANSLATE_NOOP("Commands", "The next shape is added to the selection.")},
        {QT_TRANSLATE_NOOP("Commands", "Subtractive"), "modeSubtractive", "subtractive_selection",
         QT_TRANSLATE_NOOP("Commands", "The next shape is subtracted from the selection.")},
    }};
    return rows;
}

const char *selectionModifierNames()
{
    static const QByteArray names = [] {
        QByteArrayList words;
        for (const SelectionModifierRow &row : selectionModifiers())
            words.append(row.name);
        return words.join('|');
    }();
    return names.constData();
}

} // namespace marlowen

#include "ui/help/keylist.h"

#include "ui/commandset.h"

#include <QAction>
#include <QCoreApplication>
#include <QStringList>

namespace marlowen {

namespace {

/// A key without a command.
struct KeyRow
{
    const char *keys;
    const char *effect;
};

constexpr KeyRow viewKeys[] = {
    {"Home, 1", QT_TRANSLATE_NOOP("Keys", "3D view: look from above")},
    {"2", QT_TRANSLATE_NOOP("Keys", "3D view: look from the front")},
    {"3", QT_TRANSLATE_NOOP("Keys", "3D view: look from the left")},
    {"4", QT_TRANSLATE_NOOP("Keys", "3D view: look from the right")},
    {"Middle button",
     QT_TRANSLATE_NOOP("Keys", "Turn the relief; with Shift, and in the 2D view, move it")},
    {"Ctrl+Right button", QT_TRANSLATE_NOOP("Keys", "Turn the relief")},
    {"Wheel", QT_TRANSLATE_NOOP("Keys", "Zoom about the pointer")},
    {"Alt+Wheel", QT_TRANSLATE_NOOP("Keys", "Size of the tool; with Shift in larger steps")},
    {"Ctrl+Wheel", QT_TRANSLATE_NOOP("Keys", "Strength of the tool; with Shift in larger steps")},
    {"Ctrl while drawing",
     QT_TRANSLATE_NOOP("Keys", "Keep the stroke on a horizontal or vertical line")},
    {"Alt while drawing", QT_TRANSLATE_NOOP("Keys", "Invert the tool")},
    {"Esc while drawing", QT_TRANSLATE_NOOP("Keys", "Take the stroke back")},
    {"Esc", QT_TRANSLATE_NOOP("Keys", "2D view: discard the shape being drawn")},
    {"Enter", QT_TRANSLATE_NOOP("Keys", "2D view: close the polygon, apply the crop")},
    {"Backspace", QT_TRANSLATE_NOOP("Keys", "2D view: remove the polygon's last corner")},
    {"Shift while selecting", QT_TRANSLATE_NOOP("Keys", "Add to the selection")},
    {"Alt while selecting", QT_TRANSLATE_NOOP("Keys", "Take away from the selection")},
    {"Shift while placing",
     QT_TRANSLATE_NOOP("Keys", "Move along one axis only, turn in even steps")},
    {"Enter, Esc", QT_TRANSLATE_NOOP("Keys", "Placing a pattern: apply, cancel")},
    {"Esc with a model open", QT_TRANSLATE_NOOP("Keys", "Close the model without accepting it")},
};

constexpr KeyRow windowKeys[] = {
    {"Alt, F10", QT_TRANSLATE_NOOP("Keys", "Go to the ribbon's tabs")},
    {"Ctrl+F1", QT_TRANSLATE_NOOP("Keys", "Fold the ribbon away or out")},
    {"Arrow keys",
     QT_TRANSLATE_NOOP("Keys", "In the ribbon and the File page: go to the next command")},
    {"Enter, Space",
     QT_TRANSLATE_NOOP("Keys", "In the window: press the button that has the focus")},
    {"Esc", QT_TRANSLATE_NOOP("Keys", "Leave the ribbon or the File page")},
    {"Tab, Shift+Tab", QT_TRANSLATE_NOOP("Keys", "Go to the next or the last control")},
    {"F2, Del", QT_TRANSLATE_NOOP("Keys", "In the list of patterns: rename, move to the trash")},
    {"Ctrl+F", QT_TRANSLATE_NOOP("Keys", "In the manual: search")},
};

void addTable(QStringList &lines, const char *heading)
{
    lines << QString() << QStringLiteral("### ") + QCoreApplication::translate("Keys", heading)
          << QString()
          << QStringLiteral("| %1 | %2 |\n|---|---|")
                 .arg(QCoreApplication::translate("Keys", "Key"),
                      QCoreApplication::translate("Keys", "What it does"));
}

void addRow(QStringList &lines, QString keys, QString effect)
{
    // Characters with a meaning in Markdown.
    for (QString *text : {&keys, &effect})
        text->replace(QLatin1Char('|'), QLatin1String("\\|"))
            .replace(QLatin1Char('['), QLatin1String("\\["))
            .replace(QLatin1Char(']'), QLatin1String("\\]"));
    lines << QStringLiteral("| %1 | %2 |").arg(keys, effect);
}

template <size_t N>
void addRows(QStringList &lines, const char *heading, const KeyRow (&rows)[N])
{
    addTable(lines, heading);
    for (const KeyRow &row : rows)
        addRow(lines, QCoreApplication::translate("Keys", row.keys),
               QCoreApplication::translate("Keys", row.effect));
}

} // namespace

QString keyChapter(const CommandSet &commands)
{
    QStringList lines{QStringLiteral("## ") + QCoreApplication::translate("Keys", "All keys")};
    addTable(lines, QT_TRANSLATE_NOOP("Keys", "Commands and tools"));
    for (const QAction *action : commands.all()) {
        QStringList keys;
        for (const QKeySequence &sequence : action->shortcuts())
            keys << sequence.toString(QKeySequence::NativeText);
        if (!keys.isEmpty())
            addRow(lines, keys.join(QStringLiteral(", ")), CommandSet::nameOf(*action));
    }
    addRows(lines, QT_TRANSLATE_NOOP("Keys", "Views"), viewKeys);
    addRows(lines, QT_TRANSLATE_NOOP("Keys", "Window"), windowKeys);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace marlowen

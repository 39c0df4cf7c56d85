#include "ui/pages/exportpage.h"

#include "ui/commandset.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QAction>

namespace marlowen {

namespace exportPage {

namespace {

constexpr CommandRow commandRows[] = {
    {"exportStl", QT_TRANSLATE_NOOP("Commands", "Export STL"), "Export STL",
     QT_TRANSLATE_NOOP("Commands", "Writes the relief as a triangle mesh."), "",
     QT_TRANSLATE_NOOP("Commands", "Open or make a relief first.")},
    {"sendToDrafteon", QT_TRANSLATE_NOOP("Commands", "Send to Drafteon"), "Export to Drafteon",
     QT_TRANSLATE_NOOP("Commands", "Hands the relief to Drafteon and closes Marlowen."), "",
     QT_TRANSLATE_NOOP("Commands", "Open or make a relief first.")},
};

} // namespace

void addCommands(CommandSet &commands)
{
    commands.add(commandRows);
    commands["sendToDrafteon"]->setVisible(false);
}

void build(RibbonPage &page, CommandSet &commands)
{
    RibbonGroup *group = page.addGroup(QObject::tr("Export"));
    group->addLargeButton(commands["exportStl"]);
    group->addLargeButton(commands["sendToDrafteon"]);
}

} // namespace exportPage

} // namespace marlowen

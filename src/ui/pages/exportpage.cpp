#include "ui/pages/exportpage.h"

#include "ui/commandset.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QAction>

namespace marlowen {

namespace exportPage {

namespace {

constexpr CommandRow commandRows[] = {
    {"exportStl", "Export STL", "Export STL", "Writes the relief as a triangle mesh.", "",
     "Open or make a relief first."},
    {"sendToDrafteon", "Send to Drafteon", "Export to Drafteon",
     "Hands the relief to Drafteon and closes Marlowen.", "", "Open or make a relief first."},
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

#pragma once

namespace marlowen {

class CommandSet;
class RibbonPage;

/// The page "Export": the relief as a mesh, and back to the program that started this one.
namespace exportPage {

void addCommands(CommandSet &commands);
void build(RibbonPage &page, CommandSet &commands);

} // namespace exportPage

} // namespace marlowen

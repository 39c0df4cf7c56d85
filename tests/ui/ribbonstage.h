#pragma once

#include "personathand.h"
#include "relief/grid/relief.h"
#include "ui/commandset.h"
#include "ui/pages/toolspage.h"
#include "ui/ribbon/ribbonmainwindow.h"
#include "ui/windowparts.h"

inline constexpr int side = 96;

inline std::unique_ptr<Relief> flat()
{
    auto relief = std::make_unique<Relief>(side, side);
    std::fill_n(relief->heights().data(), relief->cells(), 4.0F);
    return relief;
}

/// A ribbon with all pages, but neither views nor docks.
struct Ribbon
{
    Ribbon()
    {
        addWindowCommands(commands);
        tools = std::make_unique<ToolActions>(commands, nullptr);
        pages = buildRibbon(window, commands, *tools);
    }

    RibbonMainWindow window;
    CommandSet commands{&window};
    std::unique_ptr<ToolActions> tools;
    WindowPages pages{};
};

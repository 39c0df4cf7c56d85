#pragma once

namespace marlowen {

class CenterArea;
class CommandSet;
class RibbonBar;
class SculptPanels;
class Workbench;

/// What stands around a model while it is being oriented: its preview in the middle, its page of
/// the ribbon, the panels and the steps of the relief put to rest.
class ModelStage
{
public:
    struct Parts
    {
        Workbench &bench;
        CommandSet &commands;
        CenterArea &center;
        SculptPanels &panels;
        RibbonBar &ribbon;
    };
    /// The history's actions are its own from now on.
    explicit ModelStage(const Parts &parts);

    /// Follows the model of the workbench.
    void refresh();

private:
    void _showPage(bool shown);
    void _showHistory(bool shown);

    Parts m_parts;
    int m_pageBefore; ///< of the ribbon, when the model was opened
};

} // namespace marlowen

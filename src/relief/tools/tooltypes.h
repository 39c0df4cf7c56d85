#pragma once

namespace marlowen {

/// The numbers of a ToolParams record, as they are saved, scripted and shown. Code names them by
/// way of Tool (`Tool::Type`, `Tool::Smooth`).
struct ToolTypes
{
    /// The tools that code names. Others follow None, by their place in the tool table.
    enum Type : int {
        Smooth,
        Smudge,
        Deposit,
        Remove,
        UndoBrush,
        Erase,
        Magic,
        Rectangle,
        Elliptical,
        Polygon,
        Crop,
        HeightBrush,
        Sample,
        Fill,
        Clay,
        Flatten,
        Scrape,
        Pinch,
        Move,
        Mask,
        None
    };
    enum Mode { Normal, Raise, Lower };
    enum Form { Round, Square };
    enum Falloff { SmoothFalloff, LinearFalloff, SphereFalloff, ConstantFalloff };
};

} // namespace marlowen

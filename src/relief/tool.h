#pragma once

#include "relief/toolparams.h"

#include <QPointF>

#include <cstdint>
#include <vector>

/// The tool of one stroke: footprint, distance map, spacing. Owned by the relief while the stroke
/// lasts.
class Tool
{
public:
    enum Type {
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

    Tool() = default;
    Tool(const Tool &) = delete;
    Tool &operator=(const Tool &) = delete;
    virtual ~Tool() = default;
};

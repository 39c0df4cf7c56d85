#pragma once

#include "ui/ribbon/office2013style.h"

namespace marlowen {

/// The style of the program: the ribbon kit's style in the maker's accent colour.
class BrindlemarkStyle : public Office2013Style
{
    Q_OBJECT

public:
    /// `mode` is the stored "ui/themeMode": 1 is the dark theme, any other value the light one.
    explicit BrindlemarkStyle(int mode);
};

} // namespace marlowen

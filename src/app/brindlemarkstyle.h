#pragma once

#include "ui/ribbon/office2013style.h"

namespace marlowen {

/// The style of the program: the ribbon kit's style in the maker's accent colour, with the
/// program's own icons in message boxes.
class BrindlemarkStyle : public Office2013Style
{
    Q_OBJECT

public:
    /// `mode` is the stored "ui/themeMode": 1 is the dark theme, any other value the light one.
    explicit BrindlemarkStyle(int mode);

    QIcon standardIcon(StandardPixmap which, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
};

} // namespace marlowen

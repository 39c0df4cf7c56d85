#pragma once

#include "ui/ribbon/office2013style.h"

#include <QApplication>

using namespace marlowen;

/// Wears the program's style in one theme.
inline void wearTheme(bool dark)
{
    auto *style = new Office2013Style;
    style->setTheme(dark ? Office2013Style::Dark : Office2013Style::Light);
    QApplication::setStyle(style);
    QApplication::setPalette(style->standardPalette());
}

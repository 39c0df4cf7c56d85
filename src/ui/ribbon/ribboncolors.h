#pragma once

#include <QColor>
#include <QPalette>

namespace marlowen {

/// The colours of neutral chrome with one accent, read from a palette so that every widget of the
/// kit follows the current palette. `Highlight` is the accent, `Window` the chrome, `Base` the
/// fields, `Mid` the border.
struct RibbonColors
{
    QColor chrome;  ///< tab row, status bar, docks
    QColor page;    ///< the page under the groups, fields
    QColor border;  ///< hair lines and field outlines
    QColor hover;   ///< under the pointer
    QColor pressed; ///< held down
    QColor checked; ///< chosen
    QColor accent;  ///< the accent colour, light enough to be read on dark chrome
    QColor text;
    QColor disabledText;

    static RibbonColors of(const QPalette &palette);
};

/// `amount` of b in a, 0..1, by channel; the alpha of a is kept.
QColor mixedColor(const QColor &a, const QColor &b, double amount);

/// True when text is lighter than the window: a dark palette.
bool isDarkPalette(const QPalette &palette);

} // namespace marlowen

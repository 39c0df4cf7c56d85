#include "ui/ribbon/ribboncolors.h"

namespace marlowen {

QColor mixedColor(const QColor &a, const QColor &b, double amount)
{
    const auto channel = [amount](int from, int to) {
        return qBound(0, qRound(from + (to - from) * amount), 255);
    };
    return QColor(channel(a.red(), b.red()), channel(a.green(), b.green()),
                  channel(a.blue(), b.blue()), a.alpha());
}

bool isDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::WindowText).lightness() >
           palette.color(QPalette::Active, QPalette::Window).lightness();
}

RibbonColors RibbonColors::of(const QPalette &palette)
{
    const bool dark = isDarkPalette(palette);
    RibbonColors colors;
    colors.chrome = palette.color(QPalette::Active, QPalette::Window);
    colors.page = palette.color(QPalette::Active, QPalette::Button);
    colors.border = palette.color(QPalette::Active, QPalette::Mid);
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    colors.accent = dark ? mixedColor(highlight, Qt::white, 0.35) : highlight;
    colors.hover = mixedColor(colors.page, colors.accent, dark ? 0.18 : 0.12);
    colors.pressed = mixedColor(colors.page, colors.accent, dark ? 0.45 : 0.34);
    colors.checked = mixedColor(colors.page, colors.accent, dark ? 0.34 : 0.24);
    colors.text = palette.color(QPalette::Active, QPalette::WindowText);
    colors.disabledText = palette.color(QPalette::Disabled, QPalette::WindowText);
    return colors;
}

} // namespace marlowen

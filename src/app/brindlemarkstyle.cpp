#include "app/brindlemarkstyle.h"

#include "ui/icons.h"

namespace marlowen {

namespace {

constexpr QColor brindlemarkBlue(46, 117, 182);
constexpr int darkMode = 1;

struct BoxIcon
{
    QStyle::StandardPixmap which;
    const char *name;
};
constexpr BoxIcon boxIcons[] = {
    {QStyle::SP_MessageBoxQuestion, "ask"},
    {QStyle::SP_MessageBoxInformation, "tell"},
    {QStyle::SP_MessageBoxWarning, "warn"},
    {QStyle::SP_MessageBoxCritical, "fail"},
};

} // namespace

BrindlemarkStyle::BrindlemarkStyle(int mode)
{
    setAccentColor(brindlemarkBlue);
    setTheme(mode == darkMode ? Dark : Light);
    setAccentColor(brindlemarkBlue);
}

QIcon BrindlemarkStyle::standardIcon(StandardPixmap which, const QStyleOption *option,
                                     const QWidget *widget) const
{
    for (const BoxIcon &box : boxIcons) {
        if (box.which == which)
            return icon(QLatin1String(box.name));
    }
    return Office2013Style::standardIcon(which, option, widget);
}

} // namespace marlowen

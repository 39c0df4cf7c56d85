#include "app/brindlemarkstyle.h"

namespace marlowen {

namespace {

constexpr QColor brindlemarkBlue(46, 117, 182);
constexpr int darkMode = 1;

} // namespace

BrindlemarkStyle::BrindlemarkStyle(int mode)
{
    setAccentColor(brindlemarkBlue);
    setTheme(mode == darkMode ? Dark : Light);
    setAccentColor(brindlemarkBlue);
}

} // namespace marlowen

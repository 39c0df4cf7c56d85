#pragma once

#include <QStyle>

#include <functional>

namespace marlowen {

/// Gives the application its style and palette in the light or the dark theme. The style itself
/// belongs to the program and is registered by start-up, so that the window can switch themes
/// without knowing which style it wears.
namespace themeSwitcher {

/// Makes a new style for a theme mode (the stored "ui/themeMode": 1 is dark, all others light).
using StyleFactory = std::function<QStyle *(int mode)>;

void setStyleFactory(StyleFactory factory);

/// Installs a style made by the factory, unless the one installed last was made for the same mode
/// (none registered: the style stays).
void installStyle(int mode);

/// installStyle() and the palette of the style. Does not write the settings.
void applyTheme(int mode);

} // namespace themeSwitcher

} // namespace marlowen

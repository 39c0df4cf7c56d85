#pragma once

#include <QPalette>
#include <QStyle>

#include <functional>

/// Gives the application its style and palette in the light or the dark theme. The style itself
/// belongs to the program and is registered by start-up, so that the window can switch themes
/// without knowing which style it wears.
namespace themeSwitcher {

/// Makes a new style for a theme mode (the stored "ui/themeMode": 1 is dark, all others light).
using StyleFactory = std::function<QStyle *(int mode)>;

void setStyleFactory(StyleFactory factory);

/// The colours of the mode: window, text, fields, buttons, selection, disabled.
QPalette paletteFor(int mode);

/// Installs a style made by the factory (none registered: the style stays) and the mode's palette.
/// Does not write the settings.
void applyTheme(int mode);

} // namespace themeSwitcher

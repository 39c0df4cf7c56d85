#include "ui/themeswitcher.h"

#include <QApplication>
#include <QPalette>

#include <optional>
#include <utility>

namespace themeSwitcher {

namespace {

constexpr QColor accent(46, 117, 182);

struct Registered
{
    StyleFactory factory;
    std::optional<int> installedMode;
};

Registered &_registered()
{
    static Registered registered;
    return registered;
}

struct RoleColor
{
    QPalette::ColorRole role;
    QColor light;
    QColor dark;
    QColor lightDisabled;
    QColor darkDisabled;
};

constexpr QColor grey(int level)
{
    return QColor(level, level, level);
}

/// Roles whose disabled colour equals the active one name it twice.
constexpr RoleColor roleColors[] = {
    {QPalette::Window, grey(243), grey(43), grey(243), grey(43)},
    {QPalette::WindowText, grey(32), grey(230), grey(150), grey(120)},
    {QPalette::Base, grey(255), grey(30), grey(243), grey(38)},
    {QPalette::AlternateBase, grey(248), grey(36), grey(243), grey(38)},
    {QPalette::Text, grey(32), grey(230), grey(150), grey(120)},
    {QPalette::PlaceholderText, grey(110), grey(160), grey(150), grey(120)},
    {QPalette::Button, grey(250), grey(56), grey(243), grey(48)},
    {QPalette::ButtonText, grey(32), grey(230), grey(150), grey(120)},
    {QPalette::BrightText, grey(255), grey(255), grey(255), grey(255)},
    {QPalette::Light, grey(255), grey(72), grey(255), grey(72)},
    {QPalette::Midlight, grey(248), grey(64), grey(248), grey(64)},
    {QPalette::Mid, grey(200), grey(80), grey(210), grey(70)},
    {QPalette::Dark, grey(160), grey(24), grey(170), grey(24)},
    {QPalette::Shadow, grey(96), grey(12), grey(120), grey(12)},
    {QPalette::Highlight, accent, accent, grey(190), grey(80)},
    {QPalette::HighlightedText, grey(255), grey(255), grey(243), grey(160)},
    {QPalette::Link, accent, QColor(110, 170, 225), grey(150), grey(120)},
    {QPalette::LinkVisited, QColor(110, 80, 160), QColor(180, 150, 220), grey(150), grey(120)},
    {QPalette::ToolTipBase, grey(255), grey(56), grey(255), grey(56)},
    {QPalette::ToolTipText, grey(32), grey(230), grey(32), grey(230)},
};

} // namespace

void setStyleFactory(StyleFactory factory)
{
    _registered() = {std::move(factory), std::nullopt};
}

void installStyle(int mode)
{
    Registered &registered = _registered();
    if (!registered.factory || registered.installedMode == mode)
        return;
    QApplication::setStyle(registered.factory(mode));
    registered.installedMode = mode;
}

QPalette paletteFor(int mode)
{
    const bool dark = mode == 1;
    QPalette palette;
    for (const RoleColor &row : roleColors) {
        palette.setColor(row.role, dark ? row.dark : row.light);
        palette.setColor(QPalette::Disabled, row.role, dark ? row.darkDisabled : row.lightDisabled);
    }
    return palette;
}

void applyTheme(int mode)
{
    installStyle(mode);
    QApplication::setPalette(paletteFor(mode));
}

} // namespace themeSwitcher

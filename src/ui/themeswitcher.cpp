#include "ui/themeswitcher.h"

#include <QApplication>

#include <optional>
#include <utility>

namespace marlowen {

namespace themeSwitcher {

namespace {

struct Registered
{
    StyleFactory factory;
    std::optional<int> installedMode;
};

Registered &registry()
{
    static Registered registered;
    return registered;
}

} // namespace

void setStyleFactory(StyleFactory factory)
{
    registry() = {std::move(factory), std::nullopt};
}

void installStyle(int mode)
{
    Registered &registered = registry();
    if (!registered.factory || registered.installedMode == mode)
        return;
    QApplication::setStyle(registered.factory(mode));
    registered.installedMode = mode;
}

void applyTheme(int mode)
{
    installStyle(mode);
    QApplication::setPalette(QApplication::style()->standardPalette());
}

} // namespace themeSwitcher

} // namespace marlowen

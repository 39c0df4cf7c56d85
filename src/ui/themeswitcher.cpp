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

Registered &_registered()
{
    static Registered registered;
    return registered;
}

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

void applyTheme(int mode)
{
    installStyle(mode);
    QApplication::setPalette(QApplication::style()->standardPalette());
}

} // namespace themeSwitcher

} // namespace marlowen

#include "ui/windowlayout.h"

#include "base/qevsettings.h"
#include "ui/collapsibledock.h"

#include <QMainWindow>
#include <QScreen>
#include <QSplitter>

namespace marlowen::windowLayout {

namespace {

/// First size of the window; smaller screens are filled.
constexpr QSize roomySize(1400, 900);

constexpr char geometryKey[] = "geometry";
constexpr char docksKey[] = "windowState";
constexpr char splitterKey[] = "splitterState";

/// Where a folded dock keeps the width to open with; absent for an open one.
QString foldedKey(const CollapsibleDock &dock)
{
    return QStringLiteral("/state/folded/") + dock.objectName();
}

/// A layout kept from a larger or another screen must not leave the window out of reach.
void fitOnScreen(QMainWindow &window)
{
    const QRect room = window.screen()->availableGeometry();
    QRect place = window.geometry();
    place.setSize(place.size().boundedTo(room.size()));
    place.moveLeft(qBound(room.left(), place.left(), room.right() + 1 - place.width()));
    place.moveTop(qBound(room.top(), place.top(), room.bottom() + 1 - place.height()));
    if (place != window.geometry())
        window.setGeometry(place);
}

QByteArray kept(const char *key)
{
    return QevSettings().value(QLatin1String(key)).toByteArray();
}

} // namespace

bool restore(QMainWindow &window, QSplitter &splitter)
{
    const QSize room = window.screen()->availableSize();
    if (room.width() < roomySize.width() || room.height() < roomySize.height())
        window.setWindowState(Qt::WindowMaximized);
    window.resize(roomySize.boundedTo(room * 0.9));
    window.restoreGeometry(kept(geometryKey));
    fitOnScreen(window);
    const bool docks = window.restoreState(kept(docksKey));
    splitter.restoreState(kept(splitterKey));
    const QevSettings settings;
    for (CollapsibleDock *dock : window.findChildren<CollapsibleDock *>()) {
        if (const int width = settings.value(foldedKey(*dock)).toInt(); width > 0)
            dock->fold(width);
    }
    return docks;
}

void store(const QMainWindow &window, const QSplitter &splitter)
{
    QevSettings settings;
    settings.setValue(QLatin1String(geometryKey), window.saveGeometry());
    settings.setValue(QLatin1String(docksKey), window.saveState());
    settings.setValue(QLatin1String(splitterKey), splitter.saveState());
    for (const CollapsibleDock *dock : window.findChildren<CollapsibleDock *>()) {
        if (dock->isCollapsed())
            settings.setValue(foldedKey(*dock), dock->openWidth());
        else
            settings.remove(foldedKey(*dock));
    }
    settings.sync();
}

} // namespace marlowen::windowLayout

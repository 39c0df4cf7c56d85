#include "ui/help/whatsthis.h"

#include <QHelpEvent>
#include <QWhatsThis>
#include <QWidget>

namespace marlowen {

namespace {

/// The tip of the widget at the place, or of the nearest one around it that has one.
QString tipAt(const QWidget &window, QPoint place)
{
    const QWidget *widget = window.childAt(place);
    while (widget && widget != &window && widget->toolTip().isEmpty())
        widget = widget->parentWidget();
    return widget ? widget->toolTip() : QString();
}

} // namespace

bool explainFromTips(const QWidget &window, QEvent &event)
{
    if (event.type() != QEvent::QueryWhatsThis && event.type() != QEvent::WhatsThis)
        return false;
    auto &help = static_cast<QHelpEvent &>(event);
    const QString tip = tipAt(window, window.mapFromGlobal(help.globalPos()));
    event.setAccepted(!tip.isEmpty());
    if (event.type() == QEvent::WhatsThis && !tip.isEmpty())
        QWhatsThis::showText(help.globalPos(),
                             tip.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>")));
    return !tip.isEmpty();
}

} // namespace marlowen

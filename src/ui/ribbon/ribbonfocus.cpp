#include "ui/ribbon/ribbonfocus.h"

#include <QWidget>

namespace marlowen {

namespace {

bool isArrow(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

bool takesFocus(const QWidget &widget)
{
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) &&
           !widget.focusProxy();
}

/// How far a control lies in the direction of the key; negative when it lies elsewhere. A step to
/// the side counts three times.
int distanceAlong(int key, QPoint way)
{
    const bool across = key == Qt::Key_Left || key == Qt::Key_Right;
    const int sign = key == Qt::Key_Right || key == Qt::Key_Down ? 1 : -1;
    const int ahead = sign * (across ? way.x() : way.y());
    const int aside = qAbs(across ? way.y() : way.x());
    return ahead > 2 ? ahead + 3 * aside : -1;
}

} // namespace

QWidget *firstFocusable(const QWidget *parent)
{
    for (QWidget *next = parent->nextInFocusChain(); next && next != parent;
         next = next->nextInFocusChain()) {
        if (parent->isAncestorOf(next) && takesFocus(*next))
            return next;
    }
    return nullptr;
}

bool moveFocus(QWidget *page, int key)
{
    const QWidget *from = page ? page->window()->focusWidget() : nullptr;
    if (!from || !isArrow(key))
        return false;
    const auto centerOf = [page](const QWidget *widget) {
        return widget->mapTo(page, widget->rect().center());
    };
    QWidget *nearest = nullptr;
    int shortest = 0;
    const QList<QWidget *> all = page->findChildren<QWidget *>();
    for (QWidget *candidate : all) {
        if (candidate == from || !takesFocus(*candidate))
            continue;
        const int distance = distanceAlong(key, centerOf(candidate) - centerOf(from));
        if (distance >= 0 && (!nearest || distance < shortest)) {
            nearest = candidate;
            shortest = distance;
        }
    }
    if (nearest)
        nearest->setFocus(Qt::TabFocusReason);
    return nearest != nullptr || key != Qt::Key_Up;
}

} // namespace marlowen

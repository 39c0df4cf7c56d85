#include "ui/ribbon/ribbonfocus.h"

#include <QWidget>

namespace marlowen {

QWidget *firstFocusable(const QWidget *parent)
{
    for (QWidget *next = parent->nextInFocusChain(); next && next != parent;
         next = next->nextInFocusChain()) {
        if (parent->isAncestorOf(next) && next->isVisible() && next->isEnabled() &&
            (next->focusPolicy() & Qt::TabFocus) && !next->focusProxy())
            return next;
    }
    return nullptr;
}

} // namespace marlowen

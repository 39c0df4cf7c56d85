#include "ui/filedrop.h"

#include "ui/controllers/dialogs.h"
#include "ui/controllers/openablefiles.h"

#include <QDropEvent>
#include <QTimer>
#include <QWidget>

#include <utility>

namespace marlowen {

FileDrop::FileDrop(QWidget *window, std::function<void(const QString &path)> open)
    : QObject(window)
    , m_open(std::move(open))
{
    window->setAcceptDrops(true);
    window->installEventFilter(this);
}

bool FileDrop::eventFilter(QObject *, QEvent *event)
{
    const bool enters = event->type() == QEvent::DragEnter;
    if (!enters && event->type() != QEvent::Drop)
        return false;
    auto *drop = static_cast<QDropEvent *>(event);
    const QString path = fileToOpen(*drop->mimeData());
    if (path.isEmpty() || (enters && dialogsOpen())) {
        event->ignore();
        return true;
    }
    drop->acceptProposedAction();
    if (!enters)
        QTimer::singleShot(0, this, [this, path] { m_open(path); });
    return true;
}

} // namespace marlowen

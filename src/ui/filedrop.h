#pragma once

#include <QObject>

#include <functional>

class QWidget;

namespace marlowen {

/// Opens files that are dropped on a window. A drag is taken while no dialog is open.
class FileDrop : public QObject
{
    Q_OBJECT

public:
    /// `open` is called after the drop has ended: the source of the drag waits for it, and a
    /// question must not keep it.
    FileDrop(QWidget *window, std::function<void(const QString &path)> open);

protected:
    bool eventFilter(QObject *window, QEvent *event) override;

private:
    std::function<void(const QString &path)> m_open;
};

} // namespace marlowen

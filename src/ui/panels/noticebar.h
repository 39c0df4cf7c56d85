#pragma once

#include <QFrame>

namespace marlowen {

/// A one-line notice with one action and a button that dismisses it. The owner shows and hides
/// it.
class NoticeBar : public QFrame
{
    Q_OBJECT

public:
    NoticeBar(const QString &text, const QString &action, QWidget *parent = nullptr);

signals:
    void accepted();
    void dismissed();
};

} // namespace marlowen

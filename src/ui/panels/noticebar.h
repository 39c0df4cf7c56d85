#pragma once

#include <QFrame>

namespace marlowen {

/// A slim notice with one thing to do about it and a button that puts it away. Whoever made it
/// shows and hides it.
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

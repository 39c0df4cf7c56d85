#pragma once

#include <QWidget>

class QVBoxLayout;

namespace marlowen {

class RibbonButton;

/// The page that covers the whole window: a column of commands on the left, any content to its
/// right. Choosing a command closes the page; Escape and the back button close it too.
class RibbonBackstage : public QWidget
{
    Q_OBJECT

public:
    explicit RibbonBackstage(const QString &title, QWidget *parent);

    RibbonButton *addCommand(QAction *action);
    /// Room below which the commands are at the foot of the column.
    void addStretch();
    /// What fills the right side; taken over.
    void setContent(QWidget *content);

public slots:
    /// Shows the page over its parent, or hides it.
    void setOpen(bool open);

signals:
    void openChanged(bool open);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void _drawArrow();

    QWidget *m_side;
    QVBoxLayout *m_commands;
    QVBoxLayout *m_contentPlace;
    RibbonButton *m_back;
};

} // namespace marlowen

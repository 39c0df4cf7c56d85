#pragma once

#include <QIcon>
#include <QWidget>

class QButtonGroup;
class QGridLayout;

namespace marlowen {

/// A grid of small pictures of which one is chosen. Arrow keys move the choice.
class RibbonGallery : public QWidget
{
    Q_OBJECT

public:
    explicit RibbonGallery(QWidget *parent = nullptr);

    /// One picture at a place of the grid; the text is its tool tip and accessible name.
    void addItem(int id, QPoint place, const QIcon &icon, const QString &text);
    /// Id of the chosen picture, -1 without one.
    int current() const;
    /// Chooses without the signal; ids that are not there are ignored.
    void setCurrent(int id);

signals:
    void chosen(int id);

private:
    QGridLayout *m_grid;
    QButtonGroup *m_buttons;
};

} // namespace marlowen

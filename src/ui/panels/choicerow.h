#pragma once

#include <QString>
#include <QWidget>

#include <vector>

class QButtonGroup;
class QLabel;
class QToolButton;

namespace marlowen {

/// A label and a row of buttons of which one is down. Arrow keys move among the buttons.
class ChoiceRow : public QWidget
{
    Q_OBJECT

public:
    struct Choice
    {
        QString text;
        QString icon; ///< for icon(); empty for a button with its text only
    };

    /// Buttons with an icon show it alone and carry the text as tool tip and accessible name.
    ChoiceRow(const QString &label, const std::vector<Choice> &choices, QWidget *parent = nullptr);

    /// Index of the button that is down.
    int choice() const;
    /// Does not emit chosen. An index out of range changes nothing.
    void showChoice(int index);
    void setLabelWidth(int width);
    /// Why the row cannot be used; an empty reason enables it.
    void setReason(const QString &reason);

    QLabel *label() const { return m_label; }
    QToolButton *button(int index) const;

signals:
    /// The user pressed another button.
    void chosen(int index);

private:
    QLabel *m_label;
    QButtonGroup *m_group;
};

} // namespace marlowen

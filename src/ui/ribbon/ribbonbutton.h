#pragma once

#include <QToolButton>

namespace marlowen {

/// A command button of the ribbon in one of three forms. It draws itself: text of a large button
/// may break into two lines. Takes the focus by keyboard only, so that a click leaves it where the
/// user works.
class RibbonButton : public QToolButton
{
    Q_OBJECT

public:
    enum Form {
        Large,   ///< 32 pixel icon, text below in up to two lines
        Small,   ///< 20 pixel icon, text to the right
        IconOnly ///< 20 pixel icon
    };

    /// The action gives text, icon, tool tip, check and enabled state; a menu on it opens at once.
    explicit RibbonButton(QAction *action, Form form, QWidget *parent = nullptr);
    /// Without an action: set text and icon yourself.
    explicit RibbonButton(Form form, QWidget *parent = nullptr);

    Form form() const { return m_form; }
    void setForm(Form form);
    /// Drawn filled with the accent colour, as for the one button that leads to the file page.
    void setAccented(bool on);
    /// Shows the arrow of a drop-down without owning a menu.
    void setArrowShown(bool on);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool _hasArrow() const;
    QStringList _lines() const;
    void _paintLarge(QPainter &painter, const QColor &ink) const;
    void _paintSmall(QPainter &painter, const QColor &ink) const;
    void _paintIcon(QPainter &painter, const QRect &place) const;

    Form m_form;
    bool m_accented = false;
    bool m_arrowShown = false;
};

} // namespace marlowen

#include "ui/ribbon/ribbonbutton.h"

#include "ui/ribbon/office2013drawing.h"
#include "ui/ribbon/ribboncolors.h"

#include <QAction>
#include <QPainter>
#include <QStyleOptionToolButton>

namespace marlowen {

namespace {

constexpr int largeIcon = 32;
constexpr int smallIcon = 20;
constexpr int gap = 4;
constexpr int arrowWidth = 12;
constexpr int oneLineWidth = 76;

} // namespace

RibbonButton::RibbonButton(QAction *action, Form form, QWidget *parent)
    : RibbonButton(form, parent)
{
    setDefaultAction(action);
    if (action->menu())
        setPopupMode(InstantPopup);
}

RibbonButton::RibbonButton(Form form, QWidget *parent)
    : QToolButton(parent)
    , m_form(form)
{
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void RibbonButton::setForm(Form form)
{
    m_form = form;
    updateGeometry();
    update();
}

void RibbonButton::setAccented(bool on)
{
    m_accented = on;
    update();
}

void RibbonButton::setArrowShown(bool on)
{
    m_arrowShown = on;
    updateGeometry();
}

bool RibbonButton::_hasArrow() const
{
    return m_arrowShown || menu() != nullptr;
}

/// The text in one or two lines, broken at the space that makes the longer line shortest.
QStringList RibbonButton::_lines() const
{
    const QString whole = text();
    if (whole.contains(QLatin1Char('\n')))
        return whole.split(QLatin1Char('\n'));
    if (fontMetrics().horizontalAdvance(whole) <= oneLineWidth)
        return {whole};
    QStringList best{whole};
    int bestWidth = fontMetrics().horizontalAdvance(whole);
    for (qsizetype at = whole.indexOf(QLatin1Char(' ')); at >= 0;
         at = whole.indexOf(QLatin1Char(' '), at + 1)) {
        const QString first = whole.left(at);
        const QString second = whole.mid(at + 1);
        const int width =
            qMax(fontMetrics().horizontalAdvance(first), fontMetrics().horizontalAdvance(second));
        if (width < bestWidth) {
            best = {first, second};
            bestWidth = width;
        }
    }
    return best;
}

QSize RibbonButton::sizeHint() const
{
    const int line = fontMetrics().height();
    if (m_form == Large) {
        int width = 0;
        const QStringList lines = _lines();
        for (const QString &text : lines)
            width = qMax(width, fontMetrics().horizontalAdvance(text));
        if (_hasArrow() && lines.size() > 1)
            width = qMax(width, fontMetrics().horizontalAdvance(lines.last()) + arrowWidth);
        return {qMax(width + 3 * gap, largeIcon + 4 * gap), largeIcon + 3 * gap + 2 * line};
    }
    const int height = qMax(smallIcon, line) + 6;
    int width = smallIcon + 6;
    if (m_form == Small && !text().isEmpty()) {
        width = fontMetrics().horizontalAdvance(text()) + 3 * gap;
        if (!icon().isNull())
            width += smallIcon + gap;
    }
    return {width + (_hasArrow() ? arrowWidth : 0), height};
}

void RibbonButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    if (isDown() || (menu() && menu()->isVisible()))
        option.state |= QStyle::State_Sunken;
    const RibbonColors colors = RibbonColors::of(palette());
    QColor ink = isEnabled() ? colors.text : colors.disabledText;
    if (m_accented) {
        const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
        painter.fillRect(rect(), underMouse() ? mixedColor(accent, Qt::white, 0.15) : accent);
        ink = Qt::white;
    } else {
        style()->drawPrimitive(QStyle::PE_PanelButtonTool, &option, &painter, this);
    }
    if (m_form == Large)
        _paintLarge(painter, ink);
    else
        _paintSmall(painter, ink);
    if (hasFocus()) {
        QStyleOptionFocusRect ring;
        ring.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &ring, &painter, this);
    }
}

void RibbonButton::_paintIcon(QPainter &painter, const QRect &place) const
{
    icon().paint(&painter, place, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled,
                 isChecked() ? QIcon::On : QIcon::Off);
}

void RibbonButton::_paintLarge(QPainter &painter, const QColor &ink) const
{
    const int line = fontMetrics().height();
    const QStringList lines = _lines();
    const int lineCount = static_cast<int>(lines.size()) + (_hasArrow() && lines.size() == 1);
    const int top = (height() - (largeIcon + gap + lineCount * line)) / 2;
    _paintIcon(painter, QRect((width() - largeIcon) / 2, top, largeIcon, largeIcon));
    painter.setPen(ink);
    int y = top + largeIcon + gap;
    for (const QString &text : lines) {
        painter.drawText(QRect(0, y, width(), line), Qt::AlignCenter, text);
        y += line;
    }
    if (!_hasArrow())
        return;
    if (lines.size() == 1)
        return Office2013Drawing::arrow(QRect(0, y, width(), line), ink, false, painter);
    const int end = (width() + fontMetrics().horizontalAdvance(lines.last())) / 2;
    Office2013Drawing::arrow(QRect(end, y - line, arrowWidth, line), ink, false, painter);
}

void RibbonButton::_paintSmall(QPainter &painter, const QColor &ink) const
{
    const bool wordsShown = m_form == Small && !text().isEmpty();
    const int room = width() - (_hasArrow() ? arrowWidth : 0);
    int left = wordsShown ? gap : (room - smallIcon) / 2;
    if (!icon().isNull()) {
        _paintIcon(painter, QRect(left, (height() - smallIcon) / 2, smallIcon, smallIcon));
        left += smallIcon + gap;
    }
    painter.setPen(ink);
    if (wordsShown)
        painter.drawText(QRect(left, 0, room - left - gap / 2, height()),
                         icon().isNull() ? Qt::AlignCenter : Qt::AlignLeft | Qt::AlignVCenter,
                         text());
    if (_hasArrow())
        Office2013Drawing::arrow(QRect(room - gap / 2, 0, arrowWidth, height()), ink, false,
                                 painter);
}

} // namespace marlowen

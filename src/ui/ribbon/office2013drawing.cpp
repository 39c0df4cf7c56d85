#include "ui/ribbon/office2013drawing.h"

#include "ui/ribbon/ribboncolors.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

#include <algorithm>

namespace marlowen {

namespace {

/// Saves the painter for the length of a scope.
class PainterState
{
public:
    explicit PainterState(QPainter &painter)
        : m_painter(painter)
    {
        m_painter.save();
    }
    ~PainterState() { m_painter.restore(); }
    PainterState(const PainterState &) = delete;
    PainterState &operator=(const PainterState &) = delete;

private:
    QPainter &m_painter;
};

bool has(const QStyleOption &option, QStyle::StateFlag flag)
{
    return option.state.testFlag(flag);
}

void roundedBox(const QRectF &rect, const QPen &pen, const QBrush &brush, QPainter &painter)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(pen);
    painter.setBrush(brush);
    painter.drawRoundedRect(rect, 3, 3);
}

QRectF insideOf(const QRect &rect)
{
    return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
}

} // namespace

namespace Office2013Drawing {

void button(const QStyleOption &option, QPainter &painter, bool flat)
{
    const RibbonColors colors = RibbonColors::of(option.palette);
    const bool enabled = has(option, QStyle::State_Enabled);
    const bool held = has(option, QStyle::State_Sunken);
    const bool checked = has(option, QStyle::State_On);
    const bool hovered = has(option, QStyle::State_MouseOver) && enabled;
    if (flat && !held && !checked && !hovered)
        return;
    const PainterState state(painter);
    QColor fill = colors.page;
    if (held)
        fill = colors.pressed;
    else if (checked)
        fill = hovered ? mixedColor(colors.checked, colors.accent, 0.12) : colors.checked;
    else if (hovered)
        fill = colors.hover;
    if (!enabled)
        fill = checked ? mixedColor(fill, colors.chrome, 0.5) : colors.chrome;
    QPen pen(Qt::NoPen);
    const auto *push = qstyleoption_cast<const QStyleOptionButton *>(&option);
    // Enter presses the one with the focus, else the default.
    const bool first = push && (push->features.testFlag(QStyleOptionButton::DefaultButton) ||
                                (enabled && has(option, QStyle::State_HasFocus)));
    if (!flat)
        pen = QPen(hovered || first ? colors.accent : colors.border, first ? 1.5 : 1.0);
    else if (checked && enabled)
        pen = QPen(mixedColor(colors.checked, colors.accent, 0.55), 1);
    roundedBox(insideOf(option.rect), pen, fill, painter);
}

void field(const QStyleOption &option, QPainter &painter)
{
    const RibbonColors colors = RibbonColors::of(option.palette);
    const PainterState state(painter);
    const bool enabled = has(option, QStyle::State_Enabled);
    QColor line = colors.border;
    if (enabled && has(option, QStyle::State_HasFocus))
        line = colors.accent;
    else if (enabled && has(option, QStyle::State_MouseOver))
        line = mixedColor(colors.border, colors.text, 0.35);
    const QColor fill = enabled ? option.palette.color(QPalette::Base) : colors.chrome;
    roundedBox(insideOf(option.rect), QPen(line, 1), fill, painter);
}

void progress(const QStyleOptionProgressBar &option, QPainter &painter)
{
    const PainterState state(painter);
    const double steps = std::max(1, option.maximum - option.minimum);
    QRectF done = insideOf(option.rect);
    done.setWidth(done.width() * (option.progress - option.minimum) / steps);
    if (done.width() > 0.0)
        roundedBox(done, Qt::NoPen, option.palette.color(QPalette::Highlight), painter);
}

void focusRing(const QStyleOption &option, QPainter &painter)
{
    const PainterState state(painter);
    const RibbonColors colors = RibbonColors::of(option.palette);
    roundedBox(QRectF(option.rect).adjusted(0.75, 0.75, -0.75, -0.75), QPen(colors.text, 1.5),
               Qt::NoBrush, painter);
}

void checkBox(const QStyleOption &option, QPainter &painter)
{
    const PainterState state(painter);
    const RibbonColors colors = RibbonColors::of(option.palette);
    const bool enabled = has(option, QStyle::State_Enabled);
    const bool on = has(option, QStyle::State_On) || has(option, QStyle::State_NoChange);
    QColor line = mixedColor(colors.border, colors.text, 0.35);
    QColor fill = option.palette.color(QPalette::Base);
    if (on)
        fill = line = option.palette.color(QPalette::Active, QPalette::Highlight);
    if (!enabled) {
        line = colors.border;
        fill = on ? colors.border : colors.chrome;
    } else if (has(option, QStyle::State_MouseOver)) {
        line = colors.accent;
    }
    const QRectF box = insideOf(option.rect);
    roundedBox(box, QPen(line, 1), fill, painter);
    if (!on)
        return;
    painter.setPen(QPen(enabled ? QColor(Qt::white) : colors.chrome, 1.8, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    const auto at = [&box](double x, double y) {
        return QPointF(box.left() + box.width() * x, box.top() + box.height() * y);
    };
    if (has(option, QStyle::State_NoChange))
        painter.drawLine(at(0.25, 0.5), at(0.75, 0.5));
    else
        painter.drawPolyline(QPolygonF({at(0.22, 0.52), at(0.42, 0.72), at(0.78, 0.28)}));
}

void radioButton(const QStyleOption &option, QPainter &painter)
{
    const PainterState state(painter);
    const RibbonColors colors = RibbonColors::of(option.palette);
    const bool enabled = has(option, QStyle::State_Enabled);
    const bool on = has(option, QStyle::State_On);
    QColor line = mixedColor(colors.border, colors.text, 0.35);
    if (on || has(option, QStyle::State_MouseOver))
        line = colors.accent;
    if (!enabled)
        line = colors.border;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(line, on ? 1.5 : 1.0));
    painter.setBrush(enabled ? option.palette.color(QPalette::Base) : colors.chrome);
    const QRectF box = QRectF(option.rect).adjusted(1, 1, -1, -1);
    painter.drawEllipse(box);
    if (!on)
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(line);
    const double inset = box.width() * 0.28;
    painter.drawEllipse(box.adjusted(inset, inset, -inset, -inset));
}

void arrow(const QRect &rect, const QColor &color, bool up, QPainter &painter)
{
    const PainterState state(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const QPointF middle = QRectF(rect).center();
    const double half = qMin(3.5, rect.width() / 3.0);
    const double rise = half * (up ? -0.5 : 0.5);
    painter.drawPolyline(QPolygonF({middle + QPointF(-half, -rise), middle + QPointF(0, rise),
                                    middle + QPointF(half, -rise)}));
}

void slider(const QStyleOptionSlider &option, const QRect &handle, QPainter &painter)
{
    const PainterState state(painter);
    const RibbonColors colors = RibbonColors::of(option.palette);
    const bool enabled = has(option, QStyle::State_Enabled);
    const bool across = option.orientation == Qt::Horizontal;
    const QPointF knob = QRectF(handle).center();
    QRectF groove(option.rect);
    if (across)
        groove = QRectF(groove.left() + 2, knob.y() - 1.5, groove.width() - 4, 3);
    else
        groove = QRectF(knob.x() - 1.5, groove.top() + 2, 3, groove.height() - 4);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixedColor(colors.border, colors.text, enabled ? 0.12 : 0.0));
    painter.drawRoundedRect(groove, 1.5, 1.5);

    QRectF filled = groove;
    if (across && option.upsideDown)
        filled.setLeft(knob.x());
    else if (across)
        filled.setRight(knob.x());
    else if (option.upsideDown)
        filled.setTop(knob.y());
    else
        filled.setBottom(knob.y());
    const QColor strong = enabled ? colors.accent : colors.disabledText;
    painter.setBrush(enabled ? strong : QColor(Qt::transparent));
    painter.drawRoundedRect(filled, 1.5, 1.5);

    const bool held = has(option, QStyle::State_Sunken) &&
                      option.activeSubControls.testFlag(QStyle::SC_SliderHandle);
    const bool hovered = has(option, QStyle::State_MouseOver);
    const double radius = enabled && (held || hovered) ? 6.5 : 6.0;
    if (enabled && has(option, QStyle::State_HasFocus)) {
        QColor halo = colors.accent;
        halo.setAlphaF(0.35F);
        painter.setBrush(halo);
        painter.drawEllipse(knob, radius + 2.5, radius + 2.5);
    }
    painter.setPen(QPen(strong, 1.5));
    painter.setBrush(held ? strong : colors.page);
    painter.drawEllipse(knob, radius, radius);
}

void scrollBar(const QStyleOptionSlider &option, const QRect &handle, QPainter &painter)
{
    const PainterState state(painter);
    const RibbonColors colors = RibbonColors::of(option.palette);
    painter.fillRect(option.rect, colors.chrome);
    if (option.maximum <= option.minimum)
        return;
    const bool held = has(option, QStyle::State_Sunken) &&
                      option.activeSubControls.testFlag(QStyle::SC_ScrollBarSlider);
    const bool hovered = has(option, QStyle::State_MouseOver);
    double strength = hovered ? 0.45 : 0.28;
    if (held)
        strength = 0.6;
    const QRectF bar = option.orientation == Qt::Horizontal ? QRectF(handle).adjusted(1, 3, -1, -3)
                                                            : QRectF(handle).adjusted(3, 1, -3, -1);
    const double radius = qMin(bar.width(), bar.height()) / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixedColor(colors.chrome, colors.text, strength));
    painter.drawRoundedRect(bar, radius, radius);
}

} // namespace Office2013Drawing

} // namespace marlowen

#include "ui/ribbon/sliderfield.h"

#include "ui/ribbon/numberfield.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QSlider>
#include <QWheelEvent>

#include <cmath>

namespace marlowen {

SliderField::SliderField(const QString &label, const Range &range, QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(label, this))
    , m_slider(new QSlider(Qt::Horizontal, this))
    , m_number(new NumberField(this))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_label);
    row->addWidget(m_slider, 1);
    row->addWidget(m_number);
    m_label->setVisible(!label.isEmpty());
    m_label->setBuddy(m_number);
    m_slider->setMinimumWidth(48);
    m_slider->setFocusPolicy(Qt::StrongFocus);
    m_slider->installEventFilter(this);
    m_number->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_slider->setAccessibleName(label);
    m_number->setAccessibleName(label);
    m_value = range.defaultValue;
    setRange(range);
    setHint(QString());
    connect(m_slider, &QSlider::valueChanged, this, &SliderField::_sliderMoved);
    connect(m_number, &QDoubleSpinBox::valueChanged, this, &SliderField::setValue);
}

void SliderField::setRange(const Range &range)
{
    m_range = range;
    {
        const QSignalBlocker quietSlider(m_slider);
        const QSignalBlocker quietNumber(m_number);
        m_number->setDecimals(range.decimals);
        m_number->setRange(range.minimum, range.maximum);
        m_number->setSingleStep(range.step);
        m_number->setSuffix(range.suffix);
        const double steps = (range.maximum - range.minimum) / range.step;
        m_slider->setRange(0, qMax(0, static_cast<int>(std::lround(steps))));
        m_slider->setPageStep(qMax(1, static_cast<int>(std::lround(range.pageStep / range.step))));
        m_number->setFixedWidth(m_number->sizeHint().width());
    }
    const double before = m_value;
    _take(m_value);
    if (m_value != before)
        emit valueChanged(m_value);
}

void SliderField::setLabelWidth(int width)
{
    if (width > 0)
        m_label->setFixedWidth(width);
    else
        m_label->setMaximumWidth(QWIDGETSIZE_MAX);
}

void SliderField::setHint(const QString &hint)
{
    const QString back = tr("Double-click the slider to return to %1.")
                             .arg(m_number->textFromValue(m_range.defaultValue) + m_range.suffix);
    const QString whole = hint.isEmpty() ? back : hint + QLatin1Char('\n') + back;
    m_label->setToolTip(whole);
    m_slider->setToolTip(whole);
    m_number->setToolTip(whole);
}

/// Takes the value and shows it in both parts; false when the value does not change.
bool SliderField::_take(double value)
{
    if (!std::isfinite(value))
        return false;
    const double wanted = qBound(m_range.minimum, value, m_range.maximum);
    const bool changed = wanted != m_value;
    m_value = wanted;
    const QSignalBlocker quietSlider(m_slider);
    const QSignalBlocker quietNumber(m_number);
    m_slider->setValue(static_cast<int>(std::lround((wanted - m_range.minimum) / m_range.step)));
    m_number->setValue(wanted);
    return changed;
}

void SliderField::setValue(double value)
{
    if (_take(value))
        emit valueChanged(m_value);
}

void SliderField::showValue(double value)
{
    _take(value);
}

void SliderField::returnToDefault()
{
    setValue(m_range.defaultValue);
}

void SliderField::_sliderMoved(int position)
{
    setValue(m_range.minimum + position * m_range.step);
}

void SliderField::_wheel(int delta, bool page)
{
    m_wheelRest += delta;
    const int notches = m_wheelRest / 120;
    m_wheelRest -= notches * 120;
    setValue(m_value + notches * (page ? m_range.pageStep : m_range.step));
}

bool SliderField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_slider || !isEnabled())
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonDblClick) {
        returnToDefault();
        return true;
    }
    if (event->type() == QEvent::Wheel) {
        const auto *wheel = static_cast<QWheelEvent *>(event);
        const QPoint turn = wheel->angleDelta();
        _wheel(turn.y() != 0 ? turn.y() : turn.x(), wheel->modifiers().testFlag(Qt::ShiftModifier));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace marlowen

#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QSlider;

namespace marlowen {

class NumberField;

/// A labelled slider that shows its number and takes a typed one. The wheel works on the slider
/// (Shift for page steps) and on the focused number; a double-click on the slider returns the
/// default. Values are real; the slider moves in whole steps, a typed number may lie between them.
class SliderField : public QWidget
{
    Q_OBJECT

public:
    struct Range
    {
        double minimum = 0.0;
        double maximum = 100.0;
        double step = 1.0;
        double pageStep = 10.0;
        double defaultValue = 0.0;
        int decimals = 0;
        QString suffix; ///< shown after the number, as in " %"
    };

    SliderField(const QString &label, const Range &range, QWidget *parent = nullptr);

    const Range &range() const { return m_range; }
    /// Keeps the value where it still fits; the number emits valueChanged when it had to move.
    void setRange(const Range &range);
    double value() const { return m_value; }
    /// Room for the label in pixels, so that fields below each other align. 0: as the text needs.
    void setLabelWidth(int width);
    /// The hint, shown on all three parts; the double-click is mentioned after it.
    void setHint(const QString &hint);

    QLabel *label() const { return m_label; }
    QSlider *slider() const { return m_slider; }
    NumberField *number() const { return m_number; }

public slots:
    /// Brought into the range; emits valueChanged when it differs from the value.
    void setValue(double value);
    /// As setValue, without the signal: for a model that reports its own change.
    void showValue(double value);
    void returnToDefault();

signals:
    void valueChanged(double value);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool _take(double value);
    void _sliderMoved(int position);
    void _wheel(int delta, bool page);

    Range m_range;
    double m_value = 0.0;
    int m_wheelRest = 0;
    QLabel *m_label = nullptr;
    QSlider *m_slider = nullptr;
    NumberField *m_number = nullptr;
};

} // namespace marlowen

#pragma once

#include <QDoubleSpinBox>

namespace marlowen {

/// A number that can be typed with a decimal comma or point in any locale. Letters are
/// refused, an empty field returns to the last value, numbers out of range are clamped to the
/// nearest end. The wheel acts only while the field has the focus, so that scrolling a panel
/// changes nothing by accident.
class NumberField : public QDoubleSpinBox
{
    Q_OBJECT

public:
    explicit NumberField(QWidget *parent = nullptr);

    QValidator::State validate(QString &text, int &position) const override;
    double valueFromText(const QString &text) const override;
    QString textFromValue(double value) const override;
    void fixup(QString &text) const override;

signals:
    /// The user finished typing, also when the number is the one that was shown before.
    void typed();

protected:
    void wheelEvent(QWheelEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    bool m_edited = false;
};

} // namespace marlowen

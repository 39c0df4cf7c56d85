#include "ui/ribbon/numberfield.h"

#include "base/numbertext.h"

#include <QLineEdit>
#include <QTimer>
#include <QWheelEvent>

#include <utility>

namespace marlowen {

namespace {

/// The number in a text without prefix and suffix; comma and point both part the decimals.
double parsed(QString text, bool *ok)
{
    text = text.trimmed();
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    return QLocale::c().toDouble(text, ok);
}

bool hasOnlyNumberCharacters(const QString &text)
{
    const QString allowed = QStringLiteral("0123456789+-., ");
    for (const QChar character : text)
        if (!allowed.contains(character))
            return false;
    return true;
}

} // namespace

NumberField::NumberField(QWidget *parent)
    : QDoubleSpinBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setKeyboardTracking(false);
    setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);
    setAlignment(Qt::AlignRight);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] { m_edited = true; });
    connect(this, &QAbstractSpinBox::editingFinished, this, [this] {
        if (std::exchange(m_edited, false))
            emit typed();
    });
}

QValidator::State NumberField::validate(QString &text, int &position) const
{
    Q_UNUSED(position)
    QString number = text;
    if (!suffix().isEmpty() && number.endsWith(suffix()))
        number.chop(suffix().size());
    if (!hasOnlyNumberCharacters(number))
        return QValidator::Invalid;
    bool ok = false;
    const double value = parsed(number, &ok);
    return ok && value >= minimum() && value <= maximum() ? QValidator::Acceptable
                                                          : QValidator::Intermediate;
}

double NumberField::valueFromText(const QString &text) const
{
    QString number = text;
    if (!suffix().isEmpty() && number.endsWith(suffix()))
        number.chop(suffix().size());
    bool ok = false;
    const double typed = parsed(number, &ok);
    return ok ? typed : value();
}

QString NumberField::textFromValue(double value) const
{
    return numberText(value, decimals());
}

void NumberField::fixup(QString &text) const
{
    const double wanted = qBound(minimum(), valueFromText(text), maximum());
    text = textFromValue(wanted) + suffix();
}

void NumberField::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QDoubleSpinBox::wheelEvent(event);
    else
        event->ignore();
}

void NumberField::focusInEvent(QFocusEvent *event)
{
    QDoubleSpinBox::focusInEvent(event);
    // The press that brings the focus would place the cursor after a selection made here.
    if (event->reason() == Qt::MouseFocusReason)
        QTimer::singleShot(0, this, &QAbstractSpinBox::selectAll);
}

} // namespace marlowen

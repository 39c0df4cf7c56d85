#pragma once

#include <QLocale>
#include <QString>

namespace marlowen {

/// A number as all fields, read-outs and the status line show it: with the decimal sign of the
/// user's locale and without group separators.
inline QString numberText(double value, int decimals)
{
    QLocale plain;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    return plain.toString(value, 'f', decimals);
}

} // namespace marlowen

#pragma once

#include "relief/grid/relief.h"

#include <QStringList>

using namespace marlowen;

/// Small layers written down as pictures: one string a row, one character a cell.
namespace pictures {

/// '#' for cells that are not 0, '.' for the others.
inline QStringList ofLayer(const Relief &relief, const GridLayer &layer)
{
    QStringList rows;
    for (int row = 0; row < relief.height(); ++row) {
        QString line;
        for (int column = 0; column < relief.width(); ++column)
            line += layer.constData()[relief.index(column, row)] != 0.0F ? u'#' : u'.';
        rows << line;
    }
    return rows;
}

inline QStringList ofSelection(const Relief &relief)
{
    return ofLayer(relief, relief.selectionLayer());
}

/// Digits become values, every other character 0.
inline void intoLayer(const QStringList &rows, GridLayer &layer)
{
    float *value = layer.data();
    for (const QString &row : rows) {
        for (const QChar c : row)
            *value++ = c.isDigit() ? static_cast<float>(c.digitValue()) : 0.0F;
    }
}

/// A relief whose heights are the picture's digits.
inline std::unique_ptr<Relief> relief(const QStringList &rows)
{
    auto result = std::make_unique<Relief>(static_cast<int>(rows.front().size()),
                                           static_cast<int>(rows.size()));
    intoLayer(rows, result->heights());
    return result;
}

} // namespace pictures

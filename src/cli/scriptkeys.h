#pragma once

#include "base/fieldtable.h"

#include <QJsonObject>
#include <QString>

#include <limits>
#include <vector>

namespace marlowen {

/// What the value of a key may be.
enum class KeyType {
    Boolean,
    Integer,
    Number,
    Text,
    TextOrNull,
    Choice,       ///< one of the words in `choices`
    Point,        ///< [x, y]
    Points,       ///< [[x, y], ...], at least one
    StrokePoints, ///< [[x, y], [x, y, pressure 0..1], ...], at least one
    Cells,        ///< [[column, row], ...] of integers, at least one
    Three,        ///< [x, y, z], each within the range
    Words,        ///< a list of the words in `choices`
    Object        ///< an object of the keys in `nested`
};

/// One key that an action takes.
struct ScriptKey
{
    const char *name;
    KeyType type;
    bool required = false;
    double minimum = -std::numeric_limits<double>::max();
    double maximum = std::numeric_limits<double>::max();
    const char *choices = ""; ///< "Normal|Raise|Lower"
    const std::vector<ScriptKey> *nested = nullptr;
    bool anyCase = false; ///< the words are taken in any case
};

/// Whether the object holds only these keys, all the required ones, with values of their type and
/// range; `ignored` is a key that is not checked. Empty when it does, else one
/// sentence about the error.
QString checkKeys(const QJsonObject &object, const std::vector<ScriptKey> &keys,
                  const QString &ignored = {});

/// Position of a word in "Normal|Raise|Lower"; -1 when it is not there.
int choiceIndex(const char *choices, const QString &word, bool anyCase = false);

} // namespace marlowen

#include "cli/scriptkeys.h"

#include <QJsonArray>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

bool isWhole(const QJsonValue &value)
{
    constexpr double limit = 2147483647.0;
    const double number = value.toDouble();
    return value.isDouble() && number == std::floor(number) && std::abs(number) <= limit;
}

bool isPair(const QJsonValue &value, bool whole)
{
    const QJsonArray pair = value.toArray();
    return pair.size() == 2 && std::all_of(pair.begin(), pair.end(), [whole](const QJsonValue &v) {
               return whole ? isWhole(v) : v.isDouble();
           });
}

bool isList(const QJsonValue &value, bool whole)
{
    const QJsonArray list = value.toArray();
    return !list.isEmpty() && std::all_of(list.begin(), list.end(), [whole](const QJsonValue &v) {
        return isPair(v, whole);
    });
}

bool isStrokePoint(const QJsonValue &value)
{
    QJsonArray numbers = value.toArray();
    if (numbers.size() == 3) {
        const QJsonValue pressure = numbers.takeAt(2);
        if (!pressure.isDouble() || pressure.toDouble() < 0.0 || pressure.toDouble() > 1.0)
            return false;
    }
    return isPair(numbers, false);
}

/// The system's file calls end a name at its first NUL: the rest would be ignored.
bool isText(const QJsonValue &value)
{
    return value.isString() && !value.toString().contains(QChar::Null);
}

bool inRange(const QJsonValue &value, const ScriptKey &key)
{
    return value.toDouble() >= key.minimum && value.toDouble() <= key.maximum;
}

QString rangeText(const ScriptKey &key)
{
    constexpr double unbounded = std::numeric_limits<double>::max();
    const auto text = [](double bound) { return QString::number(bound, 'g', 10); };
    if (key.minimum > -unbounded && key.maximum < unbounded)
        return QStringLiteral(" from %1 to %2").arg(text(key.minimum), text(key.maximum));
    if (key.minimum > -unbounded)
        return QStringLiteral(" of %1 or more").arg(text(key.minimum));
    return {};
}

bool areInRange(const QJsonArray &numbers, const ScriptKey &key)
{
    return std::all_of(numbers.begin(), numbers.end(),
                       [&key](const QJsonValue &v) { return v.isDouble() && inRange(v, key); });
}

bool areWords(const QJsonArray &words, const ScriptKey &key)
{
    return std::all_of(words.begin(), words.end(), [&key](const QJsonValue &v) {
        return v.isString() && choiceIndex(key.choices, v.toString(), key.anyCase) >= 0;
    });
}

/// One row a type: its test and how a sentence calls it.
struct TypeRow
{
    KeyType type;
    bool (*matches)(const QJsonValue &value, const ScriptKey &key);
    const char *description;
};

const TypeRow typeRows[] = {
    {KeyType::Boolean, [](const QJsonValue &v, const ScriptKey &) { return v.isBool(); },
     "true or false"},
    {KeyType::Integer,
     [](const QJsonValue &v, const ScriptKey &key) { return isWhole(v) && inRange(v, key); },
     "a whole number"},
    {KeyType::Number,
     [](const QJsonValue &v, const ScriptKey &key) { return v.isDouble() && inRange(v, key); },
     "a number"},
    {KeyType::Text, [](const QJsonValue &v, const ScriptKey &) { return isText(v); },
     "a text without NUL characters"},
    {KeyType::TextOrNull,
     [](const QJsonValue &v, const ScriptKey &) { return isText(v) || v.isNull(); },
     "a text without NUL characters, or null"},
    {KeyType::Choice,
     [](const QJsonValue &v, const ScriptKey &key) {
         return v.isString() && choiceIndex(key.choices, v.toString(), key.anyCase) >= 0;
     },
     "one of "},
    {KeyType::Point, [](const QJsonValue &v, const ScriptKey &) { return isPair(v, false); },
     "a pair of numbers"},
    {KeyType::Points, [](const QJsonValue &v, const ScriptKey &) { return isList(v, false); },
     "a list of one or more pairs of numbers"},
    {KeyType::StrokePoints,
     [](const QJsonValue &v, const ScriptKey &) {
         const QJsonArray list = v.toArray();
         return !list.isEmpty() && std::all_of(list.begin(), list.end(), isStrokePoint);
     },
     "a list of one or more pairs of numbers, each with a pressure from 0 to 1 if wanted"},
    {KeyType::Cells, [](const QJsonValue &v, const ScriptKey &) { return isList(v, true); },
     "a list of one or more pairs of whole numbers"},
    {KeyType::Three,
     [](const QJsonValue &v, const ScriptKey &key) {
         return v.toArray().size() == 3 && areInRange(v.toArray(), key);
     },
     "a list of three numbers"},
    {KeyType::Words,
     [](const QJsonValue &v, const ScriptKey &key) {
         return v.isArray() && areWords(v.toArray(), key);
     },
     "a list of these: "},
    {KeyType::Object, [](const QJsonValue &v, const ScriptKey &) { return v.isObject(); },
     "an object"},
};

QString checkValue(const QJsonValue &value, const ScriptKey &key)
{
    const TypeRow &row = *std::find_if(std::begin(typeRows), std::end(typeRows),
                                       [&key](const TypeRow &r) { return r.type == key.type; });
    if (row.matches(value, key))
        return key.nested ? checkKeys(value.toObject(), *key.nested) : QString();
    const QString words =
        QString::fromLatin1(key.choices).replace(QLatin1Char('|'), QLatin1String(", "));
    // The range of a choice is that of its number in the list, which no script writes.
    return QStringLiteral("\"%1\" must be %2%3")
        .arg(QLatin1String(key.name), QLatin1String(row.description),
             words.isEmpty() ? rangeText(key) : words);
}

} // namespace

QString checkKeys(const QJsonObject &object, const std::vector<ScriptKey> &keys,
                  const QString &ignored)
{
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (entry.key() == ignored)
            continue;
        const auto known = std::find_if(keys.begin(), keys.end(), [&entry](const ScriptKey &key) {
            return entry.key() == QLatin1String(key.name);
        });
        if (known == keys.end())
            return QStringLiteral("unknown key \"%1\"").arg(entry.key());
        if (const QString wrong = checkValue(entry.value(), *known); !wrong.isEmpty())
            return wrong;
    }
    for (const ScriptKey &key : keys) {
        if (key.required && !object.contains(QLatin1String(key.name)))
            return QStringLiteral("the key \"%1\" is missing").arg(QLatin1String(key.name));
    }
    return {};
}

int choiceIndex(const char *choices, const QString &word, bool anyCase)
{
    const QStringList words = QString::fromLatin1(choices).split(QLatin1Char('|'));
    const auto sensitivity = anyCase ? Qt::CaseInsensitive : Qt::CaseSensitive;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (words[i].compare(word, sensitivity) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

} // namespace marlowen

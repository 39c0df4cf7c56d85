#include "cli/fieldkeys.h"

namespace marlowen {

ScriptKey keyOf(const FieldInfo &info, FieldType type)
{
    constexpr KeyType types[] = {KeyType::Boolean, KeyType::Integer, KeyType::Number};
    return {.name = info.key,
            .type = *info.choices ? KeyType::Choice : types[static_cast<int>(type)],
            .minimum = info.range.minimum,
            .maximum = info.range.maximum,
            .choices = info.choices,
            .anyCase = info.anyCase};
}

double numberOf(const QJsonValue &value, const FieldInfo &info)
{
    if (value.isString())
        return choiceIndex(info.choices, value.toString(), info.anyCase);
    return value.isBool() ? static_cast<double>(value.toBool()) : value.toDouble();
}

} // namespace marlowen

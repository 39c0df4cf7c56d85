#pragma once

#include "base/fieldtable.h"
#include "cli/scriptkeys.h"

#include <QJsonObject>

#include <vector>

namespace marlowen {

/// The script key of a field.
ScriptKey keyOf(const FieldInfo &info, FieldType type);
/// The number that a checked JSON value stands for.
double numberOf(const QJsonValue &value, const FieldInfo &info);

/// The keys of a record's fields; with `flags`, of those that have one of these.
template <typename Record>
std::vector<ScriptKey> keysOf(FieldTable<Record> table, unsigned flags = 0)
{
    std::vector<ScriptKey> keys;
    for (const Field<Record> &field : table) {
        if (flags == 0 || field.info.has(flags))
            keys.push_back(keyOf(field.info, field.type()));
    }
    return keys;
}

/// The record with the values of a checked object put in; other keys are not looked at.
template <typename Record>
Record withValues(FieldTable<Record> table, Record record, const QJsonObject &values)
{
    for (const Field<Record> &field : table) {
        const auto value = values.constFind(QLatin1String(field.info.key));
        if (value != values.constEnd())
            field.store(record, numberOf(*value, field.info));
    }
    return record;
}

} // namespace marlowen

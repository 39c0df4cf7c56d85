#pragma once

#include "base/fieldtable.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace marlowen {

/// One option of a command.
struct CommandOption
{
    QString name;  ///< "--tilt"
    QString value; ///< how the help calls its value; empty when it takes none
    QString help;  ///< what it does
    std::function<bool(const QString &value)> take; ///< false: the value is wrong
};

/// Applies the options among the arguments, "--name value" or "--name=value", and returns the other
/// arguments. `wrong` becomes one sentence about the first option that is wrong.
QStringList takeOptions(const QStringList &arguments, const std::vector<CommandOption> &options,
                        QString &wrong);
/// One line an option, or more where the text is long.
QString optionsHelp(const std::vector<CommandOption> &options);

/// Numbers of a command line; false when the text is none or out of range.
bool parseWhole(const QString &text, const FieldRange &range, int &value);
bool parseReal(const QString &text, const FieldRange &range, double &value);

/// A field of any record as an option.
struct OptionField
{
    const FieldInfo *info;
    FieldType type;
    double initial;
    std::function<void(double value)> store;
};
/// The options of fields (see FieldOption); `given` is called when one is used.
std::vector<CommandOption> optionsOf(const std::vector<OptionField> &fields,
                                     const std::function<void()> &given);

/// The options of a record; table and record must outlive them.
template <typename Record>
std::vector<CommandOption> optionsOf(FieldTable<Record> table, Record &record,
                                     const std::function<void()> &given)
{
    std::vector<OptionField> fields;
    for (const Field<Record> &field : table) {
        const auto store = [&field, &record](double value) { field.store(record, value); };
        fields.push_back({&field.info, field.type(), field.initial(), store});
    }
    return optionsOf(fields, given);
}

} // namespace marlowen

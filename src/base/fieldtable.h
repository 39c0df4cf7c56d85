#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <variant>

namespace marlowen {

/// Field tables: one row a field of a record (tool parameters, import settings, export options).
/// Panels, script keys, command line options with their help, clamping and checks read the rows, so
/// that a range, a label or a hint is written once. A field's default is that of the record.

/// Both ends included.
struct FieldRange
{
    double minimum = -std::numeric_limits<double>::max();
    double maximum = std::numeric_limits<double>::max();

    bool contains(double value) const { return value >= minimum && value <= maximum; }
    double clamped(double value) const { return std::clamp(value, minimum, maximum); }
    bool bounded() const { return maximum < std::numeric_limits<double>::max(); }
};

/// The number on a control from the stored one, and back.
struct FieldScale
{
    double (*shown)(double stored);
    double (*stored)(double shown);
};

/// The control shows the stored value.
inline constexpr FieldScale sameScale{[](double v) { return v; }, [](double v) { return v; }};
/// Stored 0..1, shown 0..100.
inline constexpr FieldScale percentScale{[](double v) { return v * 100.0; },
                                         [](double v) { return v / 100.0; }};
/// As percentScale; stored is the square.
inline constexpr FieldScale squaredPercentScale{[](double v) { return std::sqrt(v) * 100.0; },
                                                [](double v) { return (v / 100.0) * (v / 100.0); }};
/// Stored in tenths, shown in whole units.
inline constexpr FieldScale tenthsScale{[](double v) { return v / 10.0; },
                                        [](double v) { return v * 10.0; }};

/// The slider of a field; its numbers are those shown.
struct FieldControl
{
    double minimum = 0.0;
    double maximum = 0.0;
    double step = 1.0;
    double pageStep = 10.0;
    int decimals = 0;
    const char *unit = ""; ///< follows the number, UTF-8, with its leading space
    FieldScale scale = sameScale;
};

/// How the command line sets a field. Fields with the same option name share one option: their
/// numbers follow it separated by commas, in the order of the table, and their flags are
/// inverted.
struct FieldOption
{
    const char *name = nullptr;  ///< "--flip-y"; null: the command line does not set the field
    const char *value = nullptr; ///< name of the number in the help; null: the range
    const char *help = nullptr;  ///< for all fields of the option, in place of their hints
};

enum class FieldType { Flag, Whole, Real };

/// The description of a field without its member of the record.
struct FieldInfo
{
    const char *key;       ///< name in scripts and settings
    const char *label;     ///< text beside its control
    const char *hint;      ///< one sentence: the effect
    unsigned flags = 0;    ///< bits defined by the record's table
    FieldRange range = {}; ///< accepted from controls, scripts and files
    FieldControl control = {};
    const char *choices = ""; ///< of a whole number: the words for 0, 1, ..., "Normal|Raise|Lower"
    const char *icons = "";   ///< of its choices, as the words; empty: none
    FieldRange usable = {};   ///< accepted by the code that reads the record, where that is wider
    bool anyCase = false;     ///< the words are compared without regard to case
    FieldOption option = {};

    bool has(unsigned flag) const { return (flags & flag) != 0; }
};

/// One field of a record: a flag, a whole or a real number.
template <typename Record>
struct Field
{
    std::variant<bool Record::*, int Record::*, double Record::*> member;
    FieldInfo info;

    FieldType type() const { return static_cast<FieldType>(member.index()); }

    /// A flag is 0 or 1.
    double value(const Record &record) const
    {
        return std::visit([&record](auto place) { return static_cast<double>(record.*place); },
                          member);
    }

    /// Whole numbers are rounded. The caller checks the range.
    void store(Record &record, double value) const
    {
        if (const auto *flag = std::get_if<bool Record::*>(&member))
            record.*(*flag) = value != 0.0;
        else if (const auto *whole = std::get_if<int Record::*>(&member))
            record.*(*whole) = static_cast<int>(std::lround(value));
        else
            record.*std::get<double Record::*>(member) = value;
    }

    double initial() const
    {
        static const Record defaults{};
        return value(defaults);
    }
    double shown(const Record &record) const { return info.control.scale.shown(value(record)); }
    void storeShown(Record &record, double number) const
    {
        store(record, info.control.scale.stored(number));
    }
};

template <typename Record>
using FieldTable = std::span<const Field<Record>>;

/// The row of a member; the table must have one.
template <typename Record, typename Value>
const Field<Record> &fieldOf(FieldTable<Record> table, Value Record::*member)
{
    return *std::find_if(table.begin(), table.end(), [member](const Field<Record> &field) {
        const auto *place = std::get_if<Value Record::*>(&field.member);
        return place && *place == member;
    });
}

/// The record with every value moved into its field's range; a value that is not finite, and a
/// choice without a word, becomes the default.
template <typename Record>
Record clampedFields(FieldTable<Record> table, Record record,
                     FieldRange FieldInfo::*range = &FieldInfo::range)
{
    for (const Field<Record> &field : table) {
        const FieldRange &allowed = field.info.*range;
        const double value = field.value(record);
        const bool lost = *field.info.choices && !allowed.contains(value);
        if (lost || !std::isfinite(value))
            field.store(record, field.initial());
        else if (!allowed.contains(value))
            field.store(record, allowed.clamped(value));
    }
    return record;
}

} // namespace marlowen

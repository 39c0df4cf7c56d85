#include "cli/commandoptions.h"

#include "cli/scriptkeys.h"

#include <algorithm>
#include <iterator>

namespace marlowen {

namespace {

constexpr int nameColumn = 30; ///< width of the names in the help
constexpr int helpColumns = 70;
constexpr double unstatedMaximum = 1e9; ///< the help does not state ranges that reach so far

QString rangeText(const FieldRange &range)
{
    return QStringLiteral("%1..%2").arg(QString::number(range.minimum, 'g', 10),
                                        QString::number(range.maximum, 'g', 10));
}

/// How the help calls the value of one field.
QString valueText(const OptionField &field)
{
    if (*field.info->choices)
        return QString::fromLatin1(field.info->choices).toLower();
    if (field.info->option.value)
        return QLatin1String(field.info->option.value);
    return rangeText(field.info->range);
}

bool takeValue(const OptionField &field, const QString &text)
{
    if (*field.info->choices) {
        const int choice = choiceIndex(field.info->choices, text, field.info->anyCase);
        field.store(choice);
        return choice >= 0;
    }
    int whole = 0;
    double real = 0.0;
    const bool taken = field.type == FieldType::Whole ? parseWhole(text, field.info->range, whole)
                                                      : parseReal(text, field.info->range, real);
    if (taken)
        field.store(field.type == FieldType::Whole ? whole : real);
    return taken;
}

/// Sets all fields of one option: turns the flags over and takes a number for each of the others.
bool takeFields(const std::vector<OptionField> &fields, const QString &value)
{
    const QStringList parts = value.split(QLatin1Char(','));
    qsizetype next = 0;
    for (const OptionField &field : fields) {
        if (field.type == FieldType::Flag)
            field.store(field.initial == 0.0 ? 1.0 : 0.0);
        else if (next >= parts.size() || !takeValue(field, parts[next++]))
            return false;
    }
    return next == 0 || next == parts.size();
}

QString helpOf(const std::vector<OptionField> &fields)
{
    if (const char *help = fields.front().info->option.help)
        return QLatin1String(help);
    QStringList hints;
    for (const OptionField &field : fields)
        hints << QLatin1String(field.info->hint);
    return hints.join(QLatin1Char(' '));
}

/// One option from all its fields.
CommandOption optionOf(const std::vector<OptionField> &fields, const std::function<void()> &given)
{
    QStringList values;
    QString help = helpOf(fields);
    for (const OptionField &field : fields) {
        if (field.type == FieldType::Flag)
            continue;
        values << valueText(field);
        if (field.info->option.value && field.info->range.maximum < unstatedMaximum)
            help += QStringLiteral(" %1: %2.").arg(values.last(), rangeText(field.info->range));
    }
    return {QLatin1String(fields.front().info->option.name), values.join(QLatin1Char(',')), help,
            [fields, given](const QString &value) {
                if (given)
                    given();
                return takeFields(fields, value);
            }};
}

/// The text broken into lines of the help's width.
QStringList wrapped(const QString &text)
{
    QStringList lines{QString()};
    for (const QString &word : text.split(QLatin1Char(' '))) {
        if (!lines.last().isEmpty() && lines.last().size() + word.size() >= helpColumns)
            lines << QString();
        lines.last() += (lines.last().isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return lines;
}

/// Applies the option at `position` and moves it to the last argument that the option used.
QString takeOption(const QStringList &arguments, qsizetype &position,
                   const std::vector<CommandOption> &options)
{
    const QString name = arguments[position].section(QLatin1Char('='), 0, 0);
    const bool attached = arguments[position].contains(QLatin1Char('='));
    const auto option =
        std::find_if(options.begin(), options.end(),
                     [&name](const CommandOption &candidate) { return candidate.name == name; });
    if (option == options.end())
        return QStringLiteral("unknown option %1").arg(name);
    const bool wants = !option->value.isEmpty();
    if (!wants && attached)
        return QStringLiteral("%1 takes no value").arg(name);
    if (wants && !attached && position + 1 == arguments.size())
        return QStringLiteral("%1 needs a value: %2").arg(name, option->value);
    QString value;
    if (wants)
        value = attached ? arguments[position].section(QLatin1Char('='), 1) : arguments[++position];
    if (option->take(value))
        return {};
    return QStringLiteral("%1: \"%2\" is not %3 (%4)")
        .arg(name, value, option->value, option->help);
}

} // namespace

QStringList takeOptions(const QStringList &arguments, const std::vector<CommandOption> &options,
                        QString &wrong)
{
    QStringList others;
    for (qsizetype i = 0; i < arguments.size() && wrong.isEmpty(); ++i) {
        if (arguments[i].startsWith(QLatin1String("--")))
            wrong = takeOption(arguments, i, options);
        else
            others << arguments[i];
    }
    return others;
}

QString optionsHelp(const std::vector<CommandOption> &options)
{
    QString help;
    for (const CommandOption &option : options) {
        const QString usage = option.name + QLatin1Char(' ') + option.value;
        QStringList lines = wrapped(option.help);
        if (usage.size() >= nameColumn)
            help += QStringLiteral("  %1\n").arg(usage);
        else
            help += QStringLiteral("  %1%2\n").arg(usage, -nameColumn).arg(lines.takeFirst());
        for (const QString &line : lines)
            help += QString(nameColumn + 2, QLatin1Char(' ')) + line + QLatin1Char('\n');
    }
    return help;
}

bool parseWhole(const QString &text, const FieldRange &range, int &value)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (ok && range.contains(number))
        value = number;
    return ok && range.contains(number);
}

bool parseReal(const QString &text, const FieldRange &range, double &value)
{
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (ok && range.contains(number))
        value = number;
    return ok && range.contains(number);
}

std::vector<CommandOption> optionsOf(const std::vector<OptionField> &fields,
                                     const std::function<void()> &given)
{
    std::vector<CommandOption> options;
    std::vector<QLatin1String> seen;
    for (const OptionField &field : fields) {
        if (!field.info->option.name)
            continue;
        const QLatin1String name(field.info->option.name);
        if (std::find(seen.begin(), seen.end(), name) != seen.end())
            continue;
        seen.push_back(name);
        std::vector<OptionField> group;
        std::copy_if(fields.begin(), fields.end(), std::back_inserter(group),
                     [name](const OptionField &other) {
                         return name == QLatin1String(other.info->option.name);
                     });
        options.push_back(optionOf(group, given));
    }
    return options;
}

} // namespace marlowen

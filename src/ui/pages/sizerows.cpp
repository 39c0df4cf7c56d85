#include "ui/pages/sizerows.h"

#include "base/numbertext.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/typedranges.h"
#include "ui/commandset.h"
#include "ui/icons.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbongroup.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// A choice of the scale factors; 0 goes back to the size at first.
struct ScaleFactor
{
    const char *label;
    double factor;
};
constexpr ScaleFactor scaleFactors[] = {
    {"1/10", 0.1},      {"1/5", 0.2}, {"1/4", 0.25},
    {"1/3", 1.0 / 3.0}, {"1/2", 0.5}, {QT_TRANSLATE_NOOP("marlowen::SizeRows", "Reset"), 0.0},
    {"2", 2.0},         {"3", 3.0},   {"4", 4.0},
    {"5", 5.0},         {"10", 10.0},
};

struct LockState
{
    const char *icon;
    const char *toolTip;
};
/// In the order of AspectLock, which is the order of the clicks.
constexpr LockState lockStates[] = {
    {"aspect_xy_locked",
     QT_TRANSLATE_NOOP(
         "marlowen::SizeRows",
         "X and Y scale together; Z (height) is set on its own. Click to unlock all.")},
    {"aspect_free",
     QT_TRANSLATE_NOOP("marlowen::SizeRows",
                       "Each axis is sized independently. Click to lock all three.")},
    {"aspect_locked",
     QT_TRANSLATE_NOOP(
         "marlowen::SizeRows",
         "Proportions locked: X, Y and Z scale together. Click to lock only X and Y.")},
};

constexpr const char *axisLabels[] = {QT_TRANSLATE_NOOP("marlowen::SizeRows", "Scale X"),
                                      QT_TRANSLATE_NOOP("marlowen::SizeRows", "Scale Y"),
                                      QT_TRANSLATE_NOOP("marlowen::SizeRows", "Scale Z")};
constexpr int zAxis = 2;
const QString widestSize = QStringLiteral("8888.88 × 8888.88 × 888.88 mm");

/// Decimals that show a cell, or three figures of a size that is smaller than that.
int decimalsOf(double size, const LengthUnit &unit)
{
    constexpr int mostDecimals = 9;
    if (size <= 0.0)
        return unit.decimals;
    const int wanted = 2 - static_cast<int>(std::floor(std::log10(size)));
    return std::clamp(wanted, unit.decimals, mostDecimals);
}

QString numberText(double size, const LengthUnit &unit)
{
    constexpr double longest = 1e7;
    return size < longest ? marlowen::numberText(size, decimalsOf(size, unit))
                          : QLocale().toString(size, 'g', 4);
}

} // namespace

AxisSizes lockedSizes(const AxisSizes &working, int axis, double wanted, AspectLock lock)
{
    AxisSizes sizes = working;
    const auto changed = static_cast<size_t>(axis);
    sizes[changed] = wanted;
    const bool together =
        lock == AspectLock::AllLocked || (lock == AspectLock::XyLocked && axis != zAxis);
    if (!together || working[changed] <= 0.0)
        return sizes;
    const double factor = wanted / working[changed];
    for (size_t other = 0; other < sizes.size(); ++other) {
        const bool bound = lock == AspectLock::AllLocked || other != zAxis;
        if (other != changed && bound)
            sizes[other] = working[other] * factor;
    }
    return sizes;
}

QString sizeText(double size, size_t unit)
{
    const LengthUnit &row = lengthUnits[unit];
    return numberText(size, row) + QLatin1Char(' ') + unitLabel(row);
}

QString sizeText(const AxisSizes &sizes, size_t unit)
{
    if (sizes[0] <= 0.0 && sizes[1] <= 0.0)
        return QStringLiteral("–");
    const LengthUnit &row = lengthUnits[unit];
    return QStringLiteral("%1 × %2 × %3 %4")
        .arg(numberText(sizes[0], row), numberText(sizes[1], row), numberText(sizes[2], row),
             unitLabel(row));
}

QString sizeGroupTitle()
{
    return SizeRows::tr("Scale && Size").replace(QStringLiteral("&&"), QStringLiteral("&"));
}

QComboBox *addUnitChoice(RibbonGroup &group, const QString &name)
{
    auto *units = new QComboBox;
    units->setObjectName(name);
    units->setAccessibleName(SizeRows::tr("Units"));
    for (const LengthUnit &unit : lengthUnits)
        units->addItem(unitLabel(unit));
    group.addRow(units);
    return units;
}

void SizeRows::addLockCommand(CommandSet &commands, const char *id)
{
    commands.add(
        {id, QT_TRANSLATE_NOOP("Commands", "Proportions"), "aspect_xy_locked", "", "", ""});
}

SizeRows::SizeRows(const Setup &setup, QObject *parent)
    : QObject(parent)
    , m_commands(setup.commands)
    , m_lockCommand(setup.lockCommand)
{
    RibbonGroup &group = setup.group;
    for (int axis = 0; axis < 3; ++axis)
        _addRow(group, axis, setup.prefix);
    group.addLargeButton(m_commands[m_lockCommand]);
    group.addSeparator();
    m_imported = new QLabel;
    m_imported->setObjectName(setup.prefix + QStringLiteral("ImportedSize"));
    m_working = new QLabel;
    m_working->setObjectName(setup.prefix + QStringLiteral("WorkingSize"));
    // The group does not follow a text that grows.
    for (QLabel *size : {m_imported, m_working})
        size->setMinimumWidth(size->fontMetrics().horizontalAdvance(widestSize));
    group.addRow(m_imported, tr("Imported"));
    group.addRow(m_working, tr("Working"));
    connect(m_commands[m_lockCommand], &QAction::triggered, this, &SizeRows::cycleLock);
    _showLock();
}

void SizeRows::_addRow(RibbonGroup &group, int axis, const QString &prefix)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    auto *field = new NumberField;
    field->setObjectName(prefix + QStringLiteral("Size%1").arg(axis));
    field->setMinimumWidth(110);
    field->setAccessibleName(tr(axisLabels[axis]));
    auto *factors = new QComboBox;
    factors->setObjectName(prefix + QStringLiteral("Factor%1").arg(axis));
    factors->setAccessibleName(tr("%1 by a factor").arg(tr(axisLabels[axis])));
    factors->setPlaceholderText(QStringLiteral("×"));
    for (const ScaleFactor &factor : scaleFactors)
        factors->addItem(tr(factor.label));
    factors->setCurrentIndex(-1);
    factors->setMaxVisibleItems(factors->count());
    // Of one width in all three rows, however long their numbers are.
    factors->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    layout->addWidget(field, 1);
    layout->addWidget(factors);
    row->setFocusProxy(field);
    group.addRow(row, tr(axisLabels[axis]));
    connect(field, &NumberField::valueChanged, this,
            [this, axis](double value) { _ask(axis, value); });
    connect(factors, &QComboBox::activated, this,
            [this, axis](int choice) { _scale(axis, choice); });
    m_fields[static_cast<size_t>(axis)] = field;
    m_factors[static_cast<size_t>(axis)] = factors;
}

void SizeRows::_ask(int axis, double wanted)
{
    emit sizesWanted(lockedSizes(m_shown.working, axis, wanted, m_lock));
    show(m_shown);
}

void SizeRows::_scale(int axis, int choice)
{
    const auto at = static_cast<size_t>(axis);
    m_factors[at]->setCurrentIndex(-1);
    const double factor = scaleFactors[choice].factor;
    _ask(axis, factor > 0.0 ? m_shown.working[at] * factor : m_shown.opened[at]);
}

void SizeRows::show(const Shown &shown)
{
    m_shown = shown;
    for (size_t axis = 0; axis < m_fields.size(); ++axis)
        _showRow(axis);
    m_imported->setText(sizeText(m_shown.imported ? m_shown.opened : AxisSizes{}, m_shown.unit));
    m_working->setText(sizeText(m_shown.working, m_shown.unit));
}

void SizeRows::_showRow(size_t axis)
{
    const LengthUnit &unit = lengthUnits[m_shown.unit];
    const double size = m_shown.working[axis];
    const QString &reason = m_shown.reasons[axis];
    NumberField *field = m_fields[axis];
    const QSignalBlocker quiet(field);
    field->setDecimals(decimalsOf(size, unit));
    field->setRange(0.0, std::max(axisSizeRangeInches.maximum / unit.inches, size));
    field->setSingleStep((axis == zAxis ? 0.05 : 0.5) / unit.inches);
    field->setSuffix(QLatin1Char(' ') + unitLabel(unit));
    field->setValue(size);
    field->setEnabled(reason.isEmpty());
    field->setToolTip(reason.isEmpty() ? tr("Size along %1").arg(QChar('X' + int(axis))) : reason);
    m_factors[axis]->setEnabled(reason.isEmpty());
    m_factors[axis]->setToolTip(
        reason.isEmpty() ? tr("Multiply the size; Reset returns to the one it was opened with")
                         : reason);
}

void SizeRows::cycleLock()
{
    m_lock = static_cast<AspectLock>((static_cast<int>(m_lock) + 1) % 3);
    _showLock();
}

void SizeRows::_showLock()
{
    const LockState &state = lockStates[static_cast<int>(m_lock)];
    QAction *action = m_commands[m_lockCommand];
    action->setIcon(icon(QLatin1String(state.icon)));
    action->setToolTip(tr(state.toolTip));
}

} // namespace marlowen

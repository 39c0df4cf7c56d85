#include "ui/pages/sizepage.h"

#include "base/numbertext.h"
#include "base/qevsettings.h"
#include "relief/grid/physicalsize.h"
#include "ui/commandset.h"
#include "ui/icons.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

namespace marlowen {

namespace {

constexpr CommandRow commandRows[] = {
    {"aspectLock", QT_TRANSLATE_NOOP("Commands", "Proportions"), "aspect_xy_locked", "", "", ""},
};

/// A choice of the scale factors; 0 goes back to the size that the relief was opened with.
struct ScaleFactor
{
    const char *label;
    double factor;
};
constexpr ScaleFactor scaleFactors[] = {
    {"1/10", 0.1},      {"1/5", 0.2}, {"1/4", 0.25},
    {"1/3", 1.0 / 3.0}, {"1/2", 0.5}, {QT_TRANSLATE_NOOP("marlowen::SizePage", "Reset"), 0.0},
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
         "marlowen::SizePage",
         "X and Y scale together; Z (height) is set on its own. Click to unlock all.")},
    {"aspect_free",
     QT_TRANSLATE_NOOP("marlowen::SizePage",
                       "Each axis is sized independently. Click to lock all three.")},
    {"aspect_locked",
     QT_TRANSLATE_NOOP(
         "marlowen::SizePage",
         "Proportions locked: X, Y and Z scale together. Click to lock only X and Y.")},
};

constexpr const char *axisLabels[] = {QT_TRANSLATE_NOOP("marlowen::SizePage", "Scale X"),
                                      QT_TRANSLATE_NOOP("marlowen::SizePage", "Scale Y"),
                                      QT_TRANSLATE_NOOP("marlowen::SizePage", "Scale Z")};
constexpr int zAxis = 2;
constexpr char unitKey[] = "/state/units";
const QString widestSize = QStringLiteral("8888.88 × 8888.88 × 888.88 mm");

} // namespace

SizeWish lockedSizes(const std::array<double, 3> &working, int axis, double wanted, AspectLock lock)
{
    SizeWish sizes = working;
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

void SizePage::addCommands(CommandSet &commands)
{
    commands.add(commandRows);
}

SizePage::SizePage(RibbonPage &page, CommandSet &commands, QObject *parent)
    : QObject(parent)
    , m_commands(commands)
{
    RibbonGroup *units = page.addGroup(tr("Units"));
    units->setIcon(icon(QStringLiteral("ruler")));
    m_unit = new QComboBox;
    m_unit->setObjectName(QStringLiteral("units"));
    m_unit->setAccessibleName(tr("Units"));
    m_unit->setToolTip(tr("The unit that sizes are shown and typed in"));
    for (const LengthUnit &unit : lengthUnits)
        m_unit->addItem(unitLabel(unit));
    units->addRow(m_unit);
    RibbonGroup *group =
        page.addGroup(tr("Scale && Size").replace(QStringLiteral("&&"), QStringLiteral("&")));
    group->setIcon(icon(QStringLiteral("scale")));
    for (int axis = 0; axis < 3; ++axis) {
        auto *row = new QWidget;
        auto *layout = new QHBoxLayout(row);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(4);
        const auto at = static_cast<size_t>(axis);
        m_fields[at] = new NumberField;
        m_fields[at]->setObjectName(QStringLiteral("size%1").arg(axis));
        m_fields[at]->setMinimumWidth(110);
        m_fields[at]->setAccessibleName(tr(axisLabels[axis]));
        m_factors[at] = new QComboBox;
        m_factors[at]->setObjectName(QStringLiteral("factor%1").arg(axis));
        m_factors[at]->setAccessibleName(tr("%1 by a factor").arg(tr(axisLabels[axis])));
        m_factors[at]->setPlaceholderText(QStringLiteral("×"));
        for (const ScaleFactor &factor : scaleFactors)
            m_factors[at]->addItem(tr(factor.label));
        m_factors[at]->setCurrentIndex(-1);
        layout->addWidget(m_fields[at]);
        layout->addWidget(m_factors[at]);
        row->setFocusProxy(m_fields[at]);
        group->addRow(row, tr(axisLabels[axis]));
        connect(m_fields[at], &NumberField::valueChanged, this, [this, axis](double value) {
            _ask(axis, value * lengthUnits[static_cast<size_t>(unit())].inches);
        });
        connect(m_factors[at], &QComboBox::activated, this,
                [this, axis](int choice) { _scale(axis, choice); });
    }
    group->addLargeButton(commands["aspectLock"]);
    group->addSeparator();
    m_imported = new QLabel;
    m_imported->setObjectName(QStringLiteral("importedSize"));
    m_working = new QLabel;
    m_working->setObjectName(QStringLiteral("workingSize"));
    // The group does not follow a text that grows.
    for (QLabel *size : {m_imported, m_working})
        size->setMinimumWidth(size->fontMetrics().horizontalAdvance(widestSize));
    group->addRow(m_imported, tr("Imported"));
    group->addRow(m_working, tr("Working"));
    m_unit->setCurrentIndex(
        qBound(0, QevSettings().value(QLatin1String(unitKey)).toInt(), m_unit->count() - 1));
    connect(m_unit, &QComboBox::activated, this, [this](int unit) {
        QevSettings().setValue(QLatin1String(unitKey), unit);
        _showNumbers();
        emit unitChanged();
    });
    connect(commands["aspectLock"], &QAction::triggered, this, &SizePage::cycleLock);
    _showLock();
    showSize({}, tr("Open or make a relief first."));
}

int SizePage::unit() const
{
    return qMax(0, m_unit->currentIndex());
}

void SizePage::_ask(int axis, double inches)
{
    emit sizeWanted(lockedSizes(m_size.working, axis, inches, m_lock));
    _showNumbers();
}

void SizePage::_scale(int axis, int choice)
{
    const auto at = static_cast<size_t>(axis);
    m_factors[at]->setCurrentIndex(-1);
    const double factor = scaleFactors[choice].factor;
    _ask(axis, factor > 0.0 ? m_size.working[at] * factor : m_size.opened[at]);
}

void SizePage::showSize(const ReliefSize &size, const QString &reason)
{
    m_size = size;
    m_reason = reason;
    _showNumbers();
}

void SizePage::_showNumbers()
{
    const LengthUnit &unitRow = lengthUnits[static_cast<size_t>(unit())];
    for (size_t axis = 0; axis < m_fields.size(); ++axis) {
        NumberField *field = m_fields[axis];
        const QSignalBlocker quiet(field);
        field->setDecimals(unitRow.decimals);
        field->setRange(0.0, 10000.0 / unitRow.inches);
        field->setSingleStep(axis == zAxis ? 0.05 / unitRow.inches : 0.5 / unitRow.inches);
        field->setSuffix(QLatin1Char(' ') + unitLabel(unitRow));
        field->setValue(m_size.working[axis] / unitRow.inches);
        const bool flat = axis == zAxis && m_size.working[axis] <= 0.0;
        const QString reason = m_reason.isEmpty() && flat
                                   ? tr("The relief is flat: there is no height to scale.")
                                   : m_reason;
        field->setEnabled(reason.isEmpty());
        m_factors[axis]->setEnabled(reason.isEmpty());
        field->setToolTip(reason.isEmpty() ? tr("Size along %1").arg(QChar('X' + int(axis)))
                                           : reason);
        m_factors[axis]->setToolTip(
            reason.isEmpty() ? tr("Multiply the size; Reset returns to the one it was opened with")
                             : reason);
    }
    m_imported->setText(_sizeText(m_size.imported ? m_size.opened : std::array<double, 3>{}));
    m_working->setText(_sizeText(m_size.working));
}

QString SizePage::_sizeText(const std::array<double, 3> &inches) const
{
    if (inches[0] <= 0.0)
        return QStringLiteral("–");
    const LengthUnit &unitRow = lengthUnits[static_cast<size_t>(unit())];
    const auto number = [&unitRow](double value) {
        return numberText(value / unitRow.inches, unitRow.decimals);
    };
    return QStringLiteral("%1 × %2 × %3 %4")
        .arg(number(inches[0]), number(inches[1]), number(inches[2]), unitLabel(unitRow));
}

void SizePage::cycleLock()
{
    m_lock = static_cast<AspectLock>((static_cast<int>(m_lock) + 1) % 3);
    _showLock();
}

void SizePage::_showLock()
{
    const LockState &state = lockStates[static_cast<int>(m_lock)];
    QAction *action = m_commands["aspectLock"];
    action->setIcon(icon(QLatin1String(state.icon)));
    action->setToolTip(tr(state.toolTip));
}

} // namespace marlowen

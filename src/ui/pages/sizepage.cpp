#include "ui/pages/sizepage.h"

#include "base/numbertext.h"
#include "base/qevsettings.h"
#include "relief/grid/physicalsize.h"
#include "ui/commandset.h"
#include "ui/icons.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QComboBox>

namespace marlowen {

namespace {

constexpr char lockCommand[] = "aspectLock";
constexpr size_t zAxis = 2;

constexpr char unitKey[] = "/state/units";

AxisSizes inUnit(AxisSizes inches, const LengthUnit &unit)
{
    for (double &size : inches)
        size /= unit.inches;
    return inches;
}

} // namespace

void SizePage::addCommands(CommandSet &commands)
{
    SizeRows::addLockCommand(commands, lockCommand);
}

SizePage::SizePage(RibbonPage &page, CommandSet &commands, QObject *parent)
    : QObject(parent)
{
    RibbonGroup *units = page.addGroup(tr("Units"));
    units->setIcon(icon(QStringLiteral("ruler")));
    m_unit = addUnitChoice(*units, QStringLiteral("units"));
    m_unit->setToolTip(tr("The unit that sizes are shown and typed in"));
    RibbonGroup *group = page.addGroup(sizeGroupTitle());
    group->setIcon(icon(QStringLiteral("scale")));
    m_rows = new SizeRows({*group, commands, lockCommand, QStringLiteral("relief")}, this);
    m_unit->setCurrentIndex(
        qBound(0, QevSettings().value(QLatin1String(unitKey)).toInt(), m_unit->count() - 1));
    connect(m_unit, &QComboBox::activated, this, [this](int unit) {
        QevSettings().setValue(QLatin1String(unitKey), unit);
        _showNumbers();
        emit unitChanged();
    });
    connect(m_rows, &SizeRows::sizesWanted, this, [this](const AxisSizes &sizes) {
        SizeWish inches = sizes;
        for (double &size : inches)
            size *= lengthUnits[static_cast<size_t>(unit())].inches;
        emit sizeWanted(inches);
    });
    showSize({}, tr("Open or make a relief first."));
}

int SizePage::unit() const
{
    return qMax(0, m_unit->currentIndex());
}

void SizePage::showSize(const ReliefSize &size, const QString &reason)
{
    m_size = size;
    m_reason = reason;
    _showNumbers();
}

void SizePage::_showNumbers()
{
    const auto unitIndex = static_cast<size_t>(unit());
    const LengthUnit &shownUnit = lengthUnits[unitIndex];
    SizeRows::Shown shown{inUnit(m_size.working, shownUnit),
                          inUnit(m_size.opened, shownUnit),
                          unitIndex,
                          {m_reason, m_reason, m_reason},
                          m_size.imported};
    if (m_reason.isEmpty() && m_size.working[zAxis] <= 0.0)
        shown.reasons[zAxis] = tr("The relief is flat: there is no height to scale.");
    m_rows->show(shown);
}

} // namespace marlowen

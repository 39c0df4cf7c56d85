#pragma once

#include <QObject>
#include <QString>

#include <array>

class QComboBox;
class QLabel;

namespace marlowen {

class CommandSet;
class NumberField;
class RibbonGroup;

/// How a change of one axis carries over to the others.
enum class AspectLock { XyLocked, Free, AllLocked };

/// A size along each axis, all in one unit.
using AxisSizes = std::array<double, 3>;

/// The sizes that follow when `axis` of `working` becomes `wanted` under a lock. An axis of size 0
/// has no proportions and stays.
AxisSizes lockedSizes(const AxisSizes &working, int axis, double wanted, AspectLock lock);

/// "8.00 in."; `unit` is an index into lengthUnits.
QString sizeText(double size, size_t unit);
/// "8.00 × 6.00 × 0.25 in."; a dash without a width and a height.
QString sizeText(const AxisSizes &sizes, size_t unit);

/// "Scale & Size"
QString sizeGroupTitle();

/// The choice of a unit: a row of the group, its object name `name`.
QComboBox *addUnitChoice(RibbonGroup &group, const QString &name);

/// Three rows of a ribbon group: the size along an axis and the factors it can be multiplied by;
/// to their right the button of the aspect lock and the imported and the working size.
class SizeRows : public QObject
{
    Q_OBJECT

public:
    struct Setup
    {
        RibbonGroup &group;
        CommandSet &commands;
        const char *lockCommand; ///< id of the button, which was added with addLockCommand()
        QString prefix;          ///< of the object names "Size0", "Factor0", "ImportedSize", ...
    };
    SizeRows(const Setup &setup, QObject *parent);

    static void addLockCommand(CommandSet &commands, const char *id);

    struct Shown
    {
        AxisSizes working{};            ///< as they are
        AxisSizes opened{};             ///< as they were at first, where "Reset" leads
        size_t unit = 0;                ///< of these numbers, an index into lengthUnits
        std::array<QString, 3> reasons; ///< why an axis cannot be sized; empty when it can
        bool imported = true;           ///< what it was at first came from a file
    };
    void show(const Shown &shown);
    AspectLock lock() const { return m_lock; }

public slots:
    /// Switches to the next state of the lock.
    void cycleLock();

signals:
    /// The user asked for these sizes, in the unit shown. The rows show the old ones until show()
    /// brings others.
    void sizesWanted(const marlowen::AxisSizes &sizes);

private:
    void _addRow(RibbonGroup &group, int axis, const QString &prefix);
    void _ask(int axis, double wanted);
    void _scale(int axis, int choice);
    void _showRow(size_t axis);
    void _showLock();

    CommandSet &m_commands;
    const char *m_lockCommand;
    Shown m_shown;
    AspectLock m_lock = AspectLock::XyLocked;
    std::array<NumberField *, 3> m_fields{};
    std::array<QComboBox *, 3> m_factors{};
    QLabel *m_imported = nullptr;
    QLabel *m_working = nullptr;
};

} // namespace marlowen

#pragma once

#include <QObject>

#include <array>

class QComboBox;
class QLabel;

namespace marlowen {

class CommandSet;
class NumberField;
class RibbonPage;

/// What the page "Size" shows, in inches.
struct ReliefSize
{
    std::array<double, 3> working{}; ///< width, height, depth as they are
    std::array<double, 3> opened{};  ///< as they were when the relief was opened
    bool imported = false;           ///< it came from a picture or a mesh
};

/// A wish of the page: the size that each axis shall have, in inches.
using SizeWish = std::array<double, 3>;

/// How a change of one axis carries over to the others.
enum class AspectLock { XyLocked, Free, AllLocked };

/// The sizes that follow when `axis` of `working` becomes `wanted` under a lock. An axis of size 0
/// has no proportions and stays.
SizeWish lockedSizes(const std::array<double, 3> &working, int axis, double wanted,
                     AspectLock lock);

/// The controls of the page "Size": unit, the relief's size in it, scale factors, aspect lock.
class SizePage : public QObject
{
    Q_OBJECT

public:
    SizePage(RibbonPage &page, CommandSet &commands, QObject *parent);

    static void addCommands(CommandSet &commands);

    /// Shows the sizes; `reason` says why they cannot be edited, empty when they can.
    void showSize(const ReliefSize &size, const QString &reason);
    AspectLock lock() const { return m_lock; }
    /// Index into lengthUnits.
    int unit() const;

public slots:
    /// Goes on to the next state of the lock.
    void cycleLock();

signals:
    /// The user asked for a size. The page shows the old one until showSize() brings another.
    void sizeWanted(const SizeWish &inches);
    void unitChanged();

private:
    void _ask(int axis, double inches);
    void _scale(int axis, int choice);
    void _showNumbers();
    void _showLock();
    QString _sizeText(const std::array<double, 3> &inches) const;

    CommandSet &m_commands;
    ReliefSize m_size;
    QString m_reason;
    AspectLock m_lock = AspectLock::XyLocked;
    QComboBox *m_unit = nullptr;
    std::array<NumberField *, 3> m_fields{};
    std::array<QComboBox *, 3> m_factors{};
    QLabel *m_imported = nullptr;
    QLabel *m_working = nullptr;
};

} // namespace marlowen

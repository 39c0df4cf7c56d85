#pragma once

#include "ui/pages/sizerows.h"

#include <QObject>

class QComboBox;

namespace marlowen {

class CommandSet;
class RibbonPage;

/// What the page "Size" shows, in inches.
struct ReliefSize
{
    AxisSizes working{};   ///< width, height, depth as they are
    AxisSizes opened{};    ///< as they were when the relief was opened
    bool imported = false; ///< it came from a picture or a mesh
};

/// A wish of the page: the size that each axis shall have, in inches.
using SizeWish = AxisSizes;

/// The controls of the page "Size": unit, the relief's size in it, scale factors, aspect lock.
class SizePage : public QObject
{
    Q_OBJECT

public:
    SizePage(RibbonPage &page, CommandSet &commands, QObject *parent);

    static void addCommands(CommandSet &commands);

    /// Shows the sizes; `reason` says why they cannot be edited, empty when they can.
    void showSize(const ReliefSize &size, const QString &reason);
    AspectLock lock() const { return m_rows->lock(); }
    /// Index into lengthUnits.
    int unit() const;

signals:
    /// The user asked for a size. The page shows the old one until showSize() brings another.
    void sizeWanted(const SizeWish &inches);
    void unitChanged();

private:
    void _showNumbers();

    ReliefSize m_size;
    QString m_reason;
    QComboBox *m_unit = nullptr;
    SizeRows *m_rows = nullptr;
};

} // namespace marlowen

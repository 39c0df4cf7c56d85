#pragma once

#include <QStyledItemDelegate>

namespace marlowen {

/// Draws an item of an icon view: its picture, framed in the accent colour when it is chosen, and
/// its text under it, elided; a ring around both while it has the keyboard. The picture is as large
/// as the view's icon size.
class ThumbnailDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    /// As large as the item says, or as picture and text need.
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    /// The text is edited where it stands.
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
};

} // namespace marlowen

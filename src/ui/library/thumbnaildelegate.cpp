#include "ui/library/thumbnaildelegate.h"

#include "ui/ribbon/ribboncolors.h"

#include <QListView>
#include <QPainter>
#include <QStyle>
#include <QWidget>

namespace marlowen {

namespace {

constexpr int gap = 4;

QRect pictureOf(const QStyleOptionViewItem &item)
{
    QRect picture(QPoint(), item.decorationSize);
    picture.moveCenter(item.rect.center());
    picture.moveTop(item.rect.top() + gap);
    return picture;
}

QRect textOf(const QStyleOptionViewItem &item)
{
    return QRect(item.rect.left(), pictureOf(item).bottom() + gap, item.rect.width(),
                 item.fontMetrics.height());
}

} // namespace

void ThumbnailDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const RibbonColors colors = RibbonColors::of(item.palette);
    const bool enabled = item.state.testFlag(QStyle::State_Enabled);
    const bool chosen = item.state.testFlag(QStyle::State_Selected);
    const QRect picture = pictureOf(item);

    painter->save();
    item.icon.paint(painter, picture, Qt::AlignCenter, enabled ? QIcon::Normal : QIcon::Disabled);
    QPen frame(colors.border, 1);
    if (chosen)
        frame = QPen(colors.accent, 3);
    else if (item.state.testFlag(QStyle::State_MouseOver) && enabled)
        frame = QPen(colors.accent, 1);
    frame.setJoinStyle(Qt::MiterJoin);
    painter->setPen(frame);
    painter->drawRect(picture.adjusted(-1, -1, 0, 0));

    const QRect text = textOf(item);
    painter->setPen(enabled ? colors.text : colors.disabledText);
    painter->setFont(item.font);
    painter->drawText(text, Qt::AlignHCenter | Qt::AlignTop,
                      item.fontMetrics.elidedText(item.text, Qt::ElideRight, text.width() - 2));
    painter->restore();
    if (item.state.testFlag(QStyle::State_HasFocus) && item.widget) {
        QStyleOptionFocusRect ring;
        ring.QStyleOption::operator=(item);
        ring.rect = item.rect.adjusted(1, 1, -1, -1);
        item.widget->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &ring, painter, item.widget);
    }
}

QSize ThumbnailDelegate::sizeHint(const QStyleOptionViewItem &option,
                                  const QModelIndex &index) const
{
    if (const QSize wanted = index.data(Qt::SizeHintRole).toSize(); wanted.isValid())
        return wanted;
    // The whole place in the grid, for names that are longer than the picture is wide.
    if (const auto *list = qobject_cast<const QListView *>(option.widget);
        list && list->gridSize().isValid())
        return list->gridSize();
    return {option.decorationSize.width() + 3 * gap,
            option.decorationSize.height() + option.fontMetrics.height() + 3 * gap};
}

void ThumbnailDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                             const QModelIndex &) const
{
    editor->setAutoFillBackground(true);
    editor->setGeometry(textOf(option).adjusted(0, -2, 0, 2));
}

} // namespace marlowen

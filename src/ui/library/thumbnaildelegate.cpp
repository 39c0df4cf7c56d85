#include "ui/library/thumbnaildelegate.h"

#include "ui/ribbon/ribboncolors.h"

#include <QPainter>
#include <QStyle>
#include <QWidget>

namespace marlowen {

namespace {

constexpr int gap = 4;

} // namespace

void ThumbnailDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const RibbonColors colors = RibbonColors::of(item.palette);
    const bool enabled = item.state.testFlag(QStyle::State_Enabled);
    const bool chosen = item.state.testFlag(QStyle::State_Selected);
    QRect picture(QPoint(), item.decorationSize);
    picture.moveCenter(item.rect.center());
    picture.moveTop(item.rect.top() + gap);

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

    const QRect text(item.rect.left(), picture.bottom() + gap, item.rect.width(),
                     item.fontMetrics.height());
    painter->setPen(enabled ? colors.text : colors.disabledText);
    painter->setFont(item.font);
    painter->drawText(text, Qt::AlignHCenter | Qt::AlignTop,
                      item.fontMetrics.elidedText(item.text, Qt::ElideRight, text.width() - gap));
    painter->restore();
    if (item.state.testFlag(QStyle::State_HasFocus) && item.widget) {
        QStyleOptionFocusRect ring;
        ring.QStyleOption::operator=(item);
        ring.rect = item.rect.adjusted(1, 1, -1, -1);
        item.widget->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &ring, painter, item.widget);
    }
}

} // namespace marlowen

#include "ui/ribbon/ribbongroup.h"

#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribboncolors.h"
#include "ui/ribbon/ribbonfocus.h"

#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr int rowsPerColumn = 3;
constexpr int rowGap = 2;
constexpr int columnGap = 4;
constexpr int separatorRoom = 9;
constexpr int margin = 6;
constexpr int labelGap = 6;

int rowHeight(const QWidget *widget)
{
    return qMax(26, widget->fontMetrics().height() + 8);
}

int titleHeight(const QWidget *widget)
{
    return widget->fontMetrics().height() + 2;
}

int controlWidth(const QWidget *control)
{
    const int wanted = qMax(control->sizeHint().width(), control->minimumWidth());
    return qMin(wanted, control->maximumWidth());
}

/// Where the controls lie; paints the hair lines between them.
class GroupContent : public QWidget
{
public:
    GroupContent(const std::vector<int> &separators, QWidget *parent)
        : QWidget(parent)
        , m_separators(separators)
    {
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const RibbonColors colors = RibbonColors::of(palette());
        for (const int x : m_separators)
            painter.fillRect(QRect(x, 4, 1, height() - 8), colors.border);
    }

private:
    const std::vector<int> &m_separators;
};

} // namespace

RibbonGroup::RibbonGroup(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_title(title)
    , m_content(new GroupContent(m_separators, this))
{
    setAccessibleName(title);
    m_drop = new RibbonButton(RibbonButton::Large, this);
    m_drop->setText(title);
    m_drop->setArrowShown(true);
    m_drop->setToolTip(title);
    m_drop->hide();
    connect(m_drop, &RibbonButton::clicked, this, &RibbonGroup::openPopup);
    m_drop->installEventFilter(this);
}

void RibbonGroup::setIcon(const QIcon &icon)
{
    m_icon = icon;
    m_drop->setIcon(icon);
}

RibbonGroup::Item &RibbonGroup::_add(QWidget *control)
{
    control->setParent(m_content);
    control->show();
    Item item;
    item.control = control;
    item.breakBefore = m_breakNext;
    item.separatorBefore = m_separatorNext;
    m_breakNext = false;
    m_separatorNext = false;
    m_items.push_back(item);
    control->installEventFilter(this);
    updateGeometry();
    return m_items.back();
}

RibbonButton *RibbonGroup::_addButton(QAction *action, bool large)
{
    auto *button = new RibbonButton(action, large ? RibbonButton::Large : RibbonButton::Small);
    Item &item = _add(button);
    item.button = button;
    item.large = large;
    button->setVisible(action->isVisible());
    // A hidden command leaves no hole.
    connect(action, &QAction::changed, button, [this, button, action] {
        if (button->isHidden() != action->isVisible())
            return;
        button->setVisible(action->isVisible());
        updateGeometry();
    });
    if (m_icon.isNull() && !action->icon().isNull())
        setIcon(action->icon());
    connect(button, &RibbonButton::clicked, this, [this, button] {
        if (!button->menu())
            closePopup();
    });
    return button;
}

RibbonButton *RibbonGroup::addLargeButton(QAction *action)
{
    return _addButton(action, true);
}

RibbonButton *RibbonGroup::addSmallButton(QAction *action)
{
    return _addButton(action, false);
}

void RibbonGroup::addRow(QWidget *control, const QString &label)
{
    Item &item = _add(control);
    if (label.isEmpty())
        return;
    item.label = new QLabel(label, m_content);
    item.label->setBuddy(control);
    item.label->setToolTip(control->toolTip());
    item.label->show();
    if (control->accessibleName().isEmpty())
        control->setAccessibleName(label);
}

void RibbonGroup::addTall(QWidget *control)
{
    _add(control).tall = true;
}

void RibbonGroup::addSeparator()
{
    m_breakNext = true;
    m_separatorNext = true;
}

int RibbonGroup::contentHeight(const QWidget *widget)
{
    return rowsPerColumn * rowHeight(widget) + (rowsPerColumn - 1) * rowGap;
}

std::vector<RibbonGroup::Column> RibbonGroup::_columns(State state)
{
    std::vector<Column> columns;
    bool separator = false;
    for (Item &item : m_items) {
        separator = separator || item.separatorBefore;
        if (item.control->isHidden())
            continue;
        const bool tall = item.tall || (item.large && state == Full);
        const bool fresh = columns.empty() || tall || columns.back().tall || item.breakBefore ||
                           separator ||
                           columns.back().items.size() == static_cast<size_t>(rowsPerColumn);
        if (fresh)
            columns.push_back({{}, tall, separator && !columns.empty(), 0});
        separator = false;
        columns.back().items.push_back(&item);
    }
    _levelRows(columns);
    return columns;
}

/// Neighbouring columns of rows share the height of the longest, so that their rows align and stand
/// in the middle beside what is tall.
void RibbonGroup::_levelRows(std::vector<Column> &columns)
{
    const auto breaks = [](const Column &column) { return column.tall || column.separatorBefore; };
    for (size_t first = 0; first < columns.size();) {
        size_t end = first + 1;
        while (end < columns.size() && !breaks(columns[end]) && !columns[first].tall)
            ++end;
        size_t rows = 0;
        for (size_t at = first; at < end; ++at)
            rows = qMax(rows, columns[at].items.size());
        for (; first < end; ++first)
            columns[first].rows = rows;
    }
}

void RibbonGroup::_setForms(State state)
{
    for (const Item &item : m_items) {
        if (!item.button)
            continue;
        const bool large = item.large && state == Full;
        const RibbonButton::Form small = state == Icons && !item.button->icon().isNull()
                                             ? RibbonButton::IconOnly
                                             : RibbonButton::Small;
        item.button->setForm(large ? RibbonButton::Large : small);
    }
}

/// Width of the controls in a state; places them too when asked.
int RibbonGroup::_layOutContent(State state, bool place)
{
    _setForms(state);
    if (place)
        m_separators.clear();
    int left = 0;
    for (const Column &column : _columns(state)) {
        if (column.separatorBefore) {
            if (place)
                m_separators.push_back(left - columnGap + separatorRoom / 2);
            left += separatorRoom - columnGap;
        }
        left += _placeColumn(column, left, place) + columnGap;
    }
    return qMax(0, left - columnGap);
}

int RibbonGroup::_placeColumn(const Column &column, int left, bool place)
{
    if (!column.tall)
        return _placeRows(column, left, place);
    QWidget *control = column.items.front()->control;
    const int width = controlWidth(control);
    if (place)
        control->setGeometry(left, 0, width, contentHeight(this));
    return width;
}

int RibbonGroup::_placeRows(const Column &column, int left, bool place)
{
    int labelWidth = 0;
    int width = 0;
    for (const Item *item : column.items) {
        if (item->label)
            labelWidth = qMax(labelWidth, item->label->sizeHint().width() + labelGap);
    }
    for (const Item *item : column.items)
        width = qMax(width, (item->label ? labelWidth : 0) + controlWidth(item->control));
    if (!place)
        return width;
    const int row = rowHeight(this);
    int top = (rowsPerColumn - static_cast<int>(column.rows)) * (row + rowGap) / 2;
    for (const Item *item : column.items) {
        const int indent = item->label ? labelWidth : 0;
        const int height = qMin(row, qMax(item->control->sizeHint().height(), row - 2));
        const int controlTop = top + (row - height) / 2;
        if (item->label)
            item->label->setGeometry(left, top, labelWidth - labelGap, row);
        const bool stretches =
            !item->button && item->control->sizePolicy().horizontalPolicy() != QSizePolicy::Fixed;
        const int wide = stretches || item->button ? width - indent : controlWidth(item->control);
        item->control->setGeometry(left + indent, controlTop, wide, height);
        top += row + rowGap;
    }
    return width;
}

int RibbonGroup::widthIn(State state)
{
    if (state == Collapsed)
        return m_drop->sizeHint().width() + 2 * margin;
    const int title = fontMetrics().horizontalAdvance(m_title);
    const int width = qMax(_layOutContent(state, false), title) + 2 * margin;
    _setForms(m_state == Collapsed ? Full : m_state);
    return width;
}

void RibbonGroup::setState(State state)
{
    if (state != Collapsed || m_state != Collapsed)
        closePopup();
    m_state = state;
    m_drop->setVisible(state == Collapsed);
    if (!isPopupOpen())
        m_content->setVisible(state != Collapsed);
    resizeEvent(nullptr);
    update();
}

void RibbonGroup::resizeEvent(QResizeEvent *)
{
    if (m_state == Collapsed) {
        m_drop->setGeometry(margin, 4, width() - 2 * margin, height() - 8);
        return;
    }
    const int content = _layOutContent(m_state, true);
    m_content->setGeometry((width() - content) / 2, 4, content, contentHeight(this));
}

QSize RibbonGroup::sizeHint() const
{
    return {width(), 4 + contentHeight(this) + titleHeight(this) + 4};
}

void RibbonGroup::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const RibbonColors colors = RibbonColors::of(palette());
    painter.fillRect(QRect(width() - 1, 8, 1, height() - 16), colors.border);
    if (m_state == Collapsed)
        return;
    painter.setPen(mixedColor(colors.text, colors.page, 0.35));
    painter.drawText(QRect(0, height() - titleHeight(this) - 2, width() - 1, titleHeight(this)),
                     Qt::AlignCenter, m_title);
}

void RibbonGroup::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateGeometry();
}

bool RibbonGroup::isPopupOpen() const
{
    return m_popup && m_popup->isVisible();
}

void RibbonGroup::openPopup()
{
    if (m_state != Collapsed || isPopupOpen())
        return;
    if (!m_popup) {
        m_popup = new QFrame(this, Qt::Popup);
        m_popup->setObjectName(QStringLiteral("RibbonGroupPopup"));
        static_cast<QFrame *>(m_popup)->setFrameShape(QFrame::StyledPanel);
        m_popup->setBackgroundRole(QPalette::Button);
        m_popup->setAutoFillBackground(true);
        m_popup->installEventFilter(this);
    }
    m_content->setParent(m_popup);
    const int width = _layOutContent(Full, true);
    m_content->setGeometry(margin + 2, margin, width, contentHeight(this));
    m_content->show();
    m_popup->resize(width + 2 * margin + 4, contentHeight(this) + 2 * margin);
    QPoint corner = mapToGlobal(QPoint(0, height()));
    const QRect area = screen()->availableGeometry();
    corner.setX(qMax(area.left(), qMin(corner.x(), area.right() - m_popup->width())));
    m_popup->move(corner);
    m_popup->show();
    if (QWidget *first = firstFocusable(m_content))
        first->setFocus(Qt::PopupFocusReason);
}

void RibbonGroup::closePopup()
{
    if (isPopupOpen())
        m_popup->hide();
}

bool RibbonGroup::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_popup && event->type() == QEvent::Hide && m_content->parent() == m_popup) {
        m_content->hide();
        m_content->setParent(this);
        m_content->setVisible(m_state != Collapsed);
        return false;
    }
    if (event->type() == QEvent::KeyPress && qobject_cast<RibbonButton *>(watched) &&
        moveFocus(isPopupOpen() ? m_popup : parentWidget(), static_cast<QKeyEvent *>(event)->key()))
        return true;
    return QWidget::eventFilter(watched, event);
}

} // namespace marlowen

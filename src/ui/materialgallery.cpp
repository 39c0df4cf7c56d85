#include "ui/materialgallery.h"

#include "render/light/materialball.h"
#include "ui/ribbon/ribboncolors.h"

#include <QEvent>
#include <QGridLayout>
#include <QMenu>
#include <QPainter>
#include <QWidgetAction>

#include <utility>

namespace marlowen {

namespace {

constexpr int ballSide = 40;
constexpr int cellSide = 48;
constexpr int ballGap = 2;
constexpr int swatchSide = 40;
constexpr int swatchMargin = 12;
constexpr int popupColumns = 6;

/// Sharp on dense screens too.
QIcon ballIcon(const Material &material, int side)
{
    return QIcon(QPixmap::fromImage(materialBall(material, 0, 2 * side)));
}

} // namespace

MaterialGallery::MaterialGallery(const QList<Material> &materials, int columns, QWidget *parent)
    : QWidget(parent)
    , m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setSpacing(ballGap);
    for (const Material &material : materials) {
        auto *ball = new QToolButton(this);
        ball->setAutoRaise(true);
        ball->setCheckable(true);
        ball->setFocusPolicy(Qt::StrongFocus);
        ball->setIcon(ballIcon(material, ballSide));
        ball->setIconSize(QSize(ballSide, ballSide));
        ball->setToolTip(material.name);
        ball->setAccessibleName(material.name);
        connect(ball, &QToolButton::clicked, this, [this, name = material.name] {
            showCurrent(name);
            emit chosen(name);
        });
        ball->setFixedSize(cellSide, cellSide);
        m_balls.append(ball);
    }
    setColumns(columns);
}

void MaterialGallery::setColumns(int columns)
{
    const int across = qMax(1, columns);
    for (int i = 0; i < m_balls.size(); ++i) {
        m_grid->removeWidget(m_balls[i]);
        m_grid->addWidget(m_balls[i], i / across, i % across);
    }
}

void MaterialGallery::showCurrent(const QString &name)
{
    for (QToolButton *ball : std::as_const(m_balls))
        ball->setChecked(ball->toolTip() == name);
}

int MaterialGallery::columnsFor(int width)
{
    return (width + ballGap) / (cellSide + ballGap);
}

MaterialSwatch::MaterialSwatch(QWidget *parent)
    : QToolButton(parent)
{
    setObjectName(QStringLiteral("materialSwatch"));
    setFixedSize(swatchSide, swatchSide);
    setCursor(Qt::ArrowCursor);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(tr("Material"));
    parent->installEventFilter(this);
    connect(this, &QToolButton::clicked, this, &MaterialSwatch::_open);
    _place();
}

void MaterialSwatch::showMaterials(const QList<Material> &materials, const Material &current)
{
    m_materials = materials;
    m_current = current.name;
    setIcon(ballIcon(current, swatchSide - 8));
    setToolTip(tr("Material: %1\nShows all materials").arg(current.name));
}

void MaterialSwatch::_place()
{
    const QSize room = parentWidget()->size();
    move(room.width() - width() - swatchMargin, room.height() - height() - swatchMargin);
}

void MaterialSwatch::_open()
{
    QMenu menu(this);
    auto *gallery = new MaterialGallery(m_materials, popupColumns);
    gallery->showCurrent(m_current);
    auto *action = new QWidgetAction(&menu);
    action->setDefaultWidget(gallery);
    menu.addAction(action);
    connect(gallery, &MaterialGallery::chosen, this, &MaterialSwatch::chosen);
    connect(gallery, &MaterialGallery::chosen, &menu, &QMenu::close);
    const QSize size = menu.sizeHint();
    menu.exec(mapToGlobal(QPoint(width() - size.width(), -size.height() - 4)));
}

void MaterialSwatch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const RibbonColors colors = RibbonColors::of(palette());
    QColor ring = colors.border;
    if (hasFocus())
        ring = colors.text;
    else if (underMouse() || isDown())
        ring = colors.accent;
    painter.setPen(QPen(ring, 2));
    painter.setBrush(colors.page);
    painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
    icon().paint(&painter, rect().adjusted(4, 4, -4, -4));
}

bool MaterialSwatch::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        _place();
    return QToolButton::eventFilter(watched, event);
}

} // namespace marlowen

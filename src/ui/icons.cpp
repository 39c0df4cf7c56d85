#include "ui/icons.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

// Outside any namespace, as the macro demands; without it the linker drops the resources.
static void initResources()
{
    Q_INIT_RESOURCE(marlowen);
}

namespace marlowen {

namespace {

constexpr char prefix[] = ":/marlowen2/";
// The colours that make_icons.py writes.
constexpr char lineToken[] = "#404750";
constexpr char accentToken[] = "#2e75b6";
constexpr double disabledOpacity = 0.35;
constexpr char accentOnDark[] = "#5ca6e6";

struct IconColours
{
    QColor line;
    QColor accent;
};

IconColours themeColours()
{
    const QPalette palette = QGuiApplication::palette();
    const bool dark = palette.color(QPalette::Button).lightness() < 128;
    return {palette.color(QPalette::Active, QPalette::ButtonText),
            QColor(QLatin1String{dark ? accentOnDark : accentToken})};
}

class SvgIconEngine : public QIconEngine
{
public:
    SvgIconEngine(const QString &name, const QByteArray &svg)
        : m_name(name)
        , m_svg(svg)
    {
    }

    QIconEngine *clone() const override { return new SvgIconEngine(m_name, m_svg); }
    QString iconName() override { return m_name; }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device()->devicePixelRatioF();
        QPixmap drawn = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
        drawn.setDevicePixelRatio(ratio);
        painter->drawPixmap(rect.topLeft(), drawn);
    }

    /// The size is in device pixels.
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(state)
        if (size.isEmpty())
            return {};
        const IconColours colours = themeColours();
        const QString key = QStringLiteral("marlowen_icon_%1_%2x%3_%4_%5")
                                .arg(m_name)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(mode == QIcon::Disabled)
                                .arg(colours.line.rgb());
        QPixmap cached;
        if (!QPixmapCache::find(key, &cached)) {
            cached = _draw(size, mode == QIcon::Disabled, colours);
            QPixmapCache::insert(key, cached);
        }
        return cached;
    }

private:
    QPixmap _draw(QSize size, bool disabled, const IconColours &colours) const
    {
        QByteArray svg = m_svg;
        svg.replace(lineToken, colours.line.name().toLatin1());
        svg.replace(accentToken, colours.accent.name().toLatin1());
        QSvgRenderer renderer(svg);
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        painter.setOpacity(disabled ? disabledOpacity : 1.0);
        const double side = qMin(size.width(), size.height());
        renderer.render(&painter,
                        QRectF((size.width() - side) / 2, (size.height() - side) / 2, side, side));
        return drawn;
    }

    QString m_name;
    QByteArray m_svg;
};

} // namespace

QIcon icon(const QString &name)
{
    ::initResources();
    QFile file(QLatin1String{prefix} + name);
    if (!file.open(QIODevice::ReadOnly)) {
        qDebug() << "no icon" << name;
        return {};
    }
    return QIcon(new SvgIconEngine(name, file.readAll()));
}

QStringList iconNames()
{
    ::initResources();
    return QDir(QLatin1String{prefix}).entryList(QDir::Files);
}

} // namespace marlowen

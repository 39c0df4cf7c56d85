#include "ui/icons.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QtTest>

using namespace marlowen;

namespace {

const QList<int> sizes{16, 22, 32};

QPalette theme(bool dark)
{
    QPalette palette;
    palette.setColor(QPalette::Button, dark ? QColor(0x2b, 0x2d, 0x30) : QColor(0xf5, 0xf6, 0xf7));
    palette.setColor(QPalette::ButtonText,
                     dark ? QColor(0xdd, 0xdf, 0xe2) : QColor(0x3c, 0x40, 0x46));
    return palette;
}

QImage iconImage(const QString &name, int size, QIcon::Mode mode = QIcon::Normal)
{
    return icon(name).pixmap(QSize(size, size), 1.0, mode).toImage();
}

int inkedPixels(const QImage &image)
{
    int inked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            inked += qAlpha(image.pixel(x, y)) > 100;
    }
    return inked;
}

} // namespace

class TestIcons : public QObject
{
    Q_OBJECT

private slots:
    void init() { QGuiApplication::setPalette(theme(false)); }

    void everyIconIsDrawn()
    {
        for (const QString &name : iconNames()) {
            for (int size : sizes) {
                const QImage image = iconImage(name, size);
                QCOMPARE(image.size(), QSize(size, size));
                QVERIFY2(inkedPixels(image) > size * size / 20, qPrintable(name));
            }
        }
    }

    void noTwoIconsLookTheSame()
    {
        QHash<QByteArray, QString> seen;
        for (const QString &name : iconNames()) {
            const QImage image = iconImage(name, 22);
            const QByteArray bytes(reinterpret_cast<const char *>(image.constBits()),
                                   image.sizeInBytes());
            QVERIFY2(!seen.contains(bytes), qPrintable(name + " is " + seen.value(bytes)));
            seen.insert(bytes, name);
        }
    }

    void linesFollowTheThemeWithoutBeingSetAgain()
    {
        const QIcon chevron = icon(QStringLiteral("chevron_up"));
        const QRgb onLight = chevron.pixmap(32, 32).toImage().pixel(16, 11);
        QGuiApplication::setPalette(theme(true));
        const QRgb onDark = chevron.pixmap(32, 32).toImage().pixel(16, 11);
        QVERIFY(qGray(onLight) < 90);
        QVERIFY(qGray(onDark) > 180);
    }

    void disabledIsPale()
    {
        const QString name = QStringLiteral("view_3d");
        const int normal = qAlpha(iconImage(name, 32).pixel(10, 16));
        const int disabled = qAlpha(iconImage(name, 32, QIcon::Disabled).pixel(10, 16));
        QVERIFY(disabled > 0 && disabled < normal / 2);
    }

    void isDrawnAtTheScreensPixelRatio()
    {
        QPixmap twice = icon(QStringLiteral("palette")).pixmap(QSize(16, 16), 2.0);
        QCOMPARE(twice.devicePixelRatio(), 2.0);
        twice.setDevicePixelRatio(1.0);
        QCOMPARE(twice.size(), QSize(32, 32));
        QCOMPARE(twice.toImage().convertToFormat(QImage::Format_ARGB32),
                 iconImage(QStringLiteral("palette"), 32).convertToFormat(QImage::Format_ARGB32));
    }

    void unknownNamesAreNull()
    {
        QTest::ignoreMessage(QtDebugMsg, "no icon \"not an icon\"");
        QVERIFY(icon(QStringLiteral("not an icon")).isNull());
    }
};

QTEST_MAIN(TestIcons)
#include "tst_icons.moc"

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

QImage _image(const QString &name, int size, QIcon::Mode mode = QIcon::Normal)
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

    void everyCommandHasItsIcon_data()
    {
        QTest::addColumn<QString>("name");
        const char *const names[] = {"logo",
                                     "undo_32",
                                     "redo_32",
                                     "ZoomToBoard_22",
                                     "openRecent",
                                     "open_32",
                                     "save_32",
                                     "exit",
                                     "Theme Dark",
                                     "Theme Light",
                                     "lightPosTopLeft",
                                     "lightPosTop",
                                     "lightPosTopRight",
                                     "lightPosLeft",
                                     "lightPosRight",
                                     "lightPosBottomLeft",
                                     "lightPosBottom",
                                     "lightPosBottomRight",
                                     "smooth_tool",
                                     "flatten_tool",
                                     "deposit_tool",
                                     "remove_tool",
                                     "clay_tool",
                                     "scrape_tool",
                                     "smudge_tool",
                                     "pinch_tool",
                                     "move_tool",
                                     "mask_tool",
                                     "undo_tool",
                                     "erase_tool",
                                     "crop_tool",
                                     "elliptical_selection_tool",
                                     "rectangle_selection_tool",
                                     "polygon_selection_tool",
                                     "additive_selection",
                                     "subtractive_selection",
                                     "magic_selection_tool",
                                     "sample_selection",
                                     "paint_selection_tool",
                                     "fill_selection",
                                     "erase_selection_tool",
                                     "Export STL",
                                     "Export OBJ",
                                     "Export PTR",
                                     "Export to Drafteon",
                                     "rotate_left",
                                     "rotate_right",
                                     "rotate_up",
                                     "rotate_down",
                                     "rotate_ccw",
                                     "rotate_cw",
                                     "flip",
                                     "reset_axes",
                                     "flip_normals",
                                     "aspect_xy_locked",
                                     "aspect_free",
                                     "aspect_locked"};
        for (const char *name : names)
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void everyCommandHasItsIcon()
    {
        QFETCH(QString, name);
        QVERIFY(iconNames().contains(name));
        for (int size : sizes) {
            const QImage image = _image(name, size);
            QCOMPARE(image.size(), QSize(size, size));
            QVERIFY(inkedPixels(image) > size * size / 20);
        }
    }

    void noTwoIconsLookTheSame()
    {
        QHash<QByteArray, QString> seen;
        for (const QString &name : iconNames()) {
            const QImage image = _image(name, 22);
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
        const int normal = qAlpha(_image(name, 32).pixel(10, 16));
        const int disabled = qAlpha(_image(name, 32, QIcon::Disabled).pixel(10, 16));
        QVERIFY(disabled > 0 && disabled < normal / 2);
    }

    void isDrawnAtTheScreensPixelRatio()
    {
        QPixmap twice = icon(QStringLiteral("palette")).pixmap(QSize(16, 16), 2.0);
        QCOMPARE(twice.devicePixelRatio(), 2.0);
        twice.setDevicePixelRatio(1.0);
        QCOMPARE(twice.size(), QSize(32, 32));
        QCOMPARE(twice.toImage().convertToFormat(QImage::Format_ARGB32),
                 _image(QStringLiteral("palette"), 32).convertToFormat(QImage::Format_ARGB32));
    }

    void unknownNamesAreNull()
    {
        QTest::ignoreMessage(QtDebugMsg, "no icon \"not an icon\"");
        QVERIFY(icon(QStringLiteral("not an icon")).isNull());
    }

    /// Writes the contact sheet for the eye when MARLOWEN_CONTACT_SHEET names a file.
    void cleanupTestCase()
    {
        const QString path = qEnvironmentVariable("MARLOWEN_CONTACT_SHEET");
        if (path.isEmpty())
            return;
        constexpr int columns = 8;
        constexpr QSize cell(150, 62);
        const QStringList names = iconNames();
        const int rows = (int(names.size()) + columns - 1) / columns;
        QImage sheet(cell.width() * columns, cell.height() * rows * 2, QImage::Format_ARGB32);
        QPainter painter(&sheet);
        painter.setFont(QFont(QStringLiteral("DejaVu Sans"), 6));
        for (bool dark : {false, true}) {
            QGuiApplication::setPalette(theme(dark));
            const int top = dark ? cell.height() * rows : 0;
            painter.fillRect(0, top, sheet.width(), cell.height() * rows, theme(dark).button());
            painter.setPen(theme(dark).color(QPalette::ButtonText));
            for (int i = 0; i < names.size(); ++i) {
                const QPoint at(i % columns * cell.width() + 8,
                                top + i / columns * cell.height() + 6);
                const QIcon shown = icon(names[i]);
                int x = at.x();
                for (int size : sizes) {
                    shown.paint(&painter, x, at.y() + 32 - size, size, size);
                    x += size + 10;
                }
                shown.paint(&painter, x, at.y() + 10, 22, 22, Qt::AlignCenter, QIcon::Disabled);
                painter.drawText(at.x(), at.y() + 46, names[i]);
            }
        }
        painter.end();
        QVERIFY(sheet.save(path));
    }
};

QTEST_MAIN(TestIcons)
#include "tst_icons.moc"

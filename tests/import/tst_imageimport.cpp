#include "import/imageimport.h"
#include "import/importsource.h"

#include "import/testpicture.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/wait.h>
#include <unistd.h>

using namespace marlowen;

namespace {

template <typename Done>
QString titleOf(const Done &done)
{
    return done ? QString() : done.failure().title;
}

/// A JPEG with an Exif orientation tag.
QByteArray jpegTurned(const QImage &image, char orientation)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpg");
    writer.setQuality(100);
    writer.write(image);
    QByteArray exif =
        QByteArray::fromHex("ffe10022457869660000" // APP1, length, "Exif"
                            "4d4d002a00000008"     // big-endian TIFF
                            "00010112000300000001" // one entry: orientation, one short
                            "00000000"             // its value
                            "00000000");
    exif[29] = orientation;
    return jpeg.insert(2, exif);
}

double statusBytes(const QByteArray &key)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0.0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.mid(key.size()).simplified().split(' ').at(0).toDouble() * 1024.0;
    }
    return 0.0;
}

} // namespace

class TestImageImport : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString _path(const QString &name) const { return m_folder.filePath(name); }

private slots:
    void greyIsTheWeightedColour()
    {
        QImage image(3, 1, QImage::Format_ARGB32);
        image.setPixel(0, 0, qRgba(255, 0, 0, 255));
        image.setPixel(1, 0, qRgba(10, 200, 30, 0)); // alpha is not looked at
        image.setPixel(2, 0, qRgba(255, 255, 255, 128));
        const FloatGrid grey = greyGrid(image);
        QVERIFY(grey.values == std::vector<float>({87, 108, 255}));
    }

    void formatsAgree_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("ending");
        QTest::newRow("PNG RGB") << int(QImage::Format_RGB32) << "png";
        QTest::newRow("PNG RGBA") << int(QImage::Format_ARGB32) << "PNG";
        QTest::newRow("PNG palette") << int(QImage::Format_Indexed8) << "png";
        QTest::newRow("PNG grey") << int(QImage::Format_Grayscale8) << "png";
        QTest::newRow("PNG 16-bit grey") << int(QImage::Format_Grayscale16) << "png";
        QTest::newRow("PNG 16-bit RGBA") << int(QImage::Format_RGBA64) << "png";
        QTest::newRow("BMP 24") << int(QImage::Format_RGB888) << "bmp";
        QTest::newRow("BMP 8") << int(QImage::Format_Indexed8) << "Bmp";
        QTest::newRow("JPEG named as PNG") << -1 << "png";
    }

    void formatsAgree()
    {
        QFETCH(int, format);
        QFETCH(QString, ending);
        const QString path = _path(QStringLiteral("picture.") + ending);
        const bool jpeg = format < 0;
        const QImage image = jpeg ? picture() : picture().convertToFormat(QImage::Format(format));
        QVERIFY(image.save(path, jpeg ? "jpg" : nullptr, 100));
        const auto imported = importImage(path, {});
        QVERIFY(imported);
        const FloatGrid expected = greyGrid(picture());
        const auto &source = *static_cast<const ImportSource *>(imported.value()->source());
        if (jpeg)
            return; // its noise in the background moves the padding
        QCOMPARE(source.width(), 60);
        for (size_t i = 0; i < expected.values.size(); ++i)
            QVERIFY(std::abs(source.values().values[i] - expected.values[i]) <= 1.0F);
    }

    void oneBitImagesLoad()
    {
        QImage image(40, 40, QImage::Format_Mono);
        image.setColorTable({qRgb(0, 0, 0), qRgb(200, 200, 200)});
        image.fill(0);
        for (int i = 10; i < 30; ++i)
            image.setPixel(i, i, 1);
        for (const QString &name : {QStringLiteral("mono.bmp"), QStringLiteral("mono.png")}) {
            QVERIFY(image.save(_path(name)));
            const auto imported = importImage(_path(name), {});
            QVERIFY(imported);
            QCOMPARE(imported.value()->heightAt(12, 12), 200.0F);
            QCOMPARE(imported.value()->heightAt(13, 12), 0.0F);
        }
    }

    void exifOrientationIsApplied()
    {
        QImage image(32, 16, QImage::Format_RGB32);
        image.fill(Qt::white);
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 8; ++x)
                image.setPixel(x, y, qRgb(64, 64, 64)); // dark at the left
        }
        QFile file(_path(QStringLiteral("turned.jpeg")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(jpegTurned(image, 6)); // to be shown turned right: dark at the top
        file.close();
        const auto imported = importImage(file.fileName(), {});
        QVERIFY(imported);
        const auto &source = *static_cast<const ImportSource *>(imported.value()->source());
        QVERIFY(source.height() > source.width());
        const GridView &values = source.values();
        QVERIFY(values.row(values.height / 8)[values.width / 2] < 80.0F);
        QVERIFY(values.row(values.height * 7 / 8)[values.width / 2] > 240.0F);
    }

    void unusualSizes_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSize>("padded");
        QTest::newRow("one pixel") << QSize(1, 1) << QSize(1, 1);
        QTest::newRow("a strip") << QSize(20000, 10) << QSize(22000, 10);
    }

    void unusualSizes()
    {
        QFETCH(QSize, size);
        QFETCH(QSize, padded);
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        QVERIFY(image.save(_path(QStringLiteral("size.png"))));
        const auto imported = importImage(_path(QStringLiteral("size.png")), {.smoothing = 1.0});
        QVERIFY(imported);
        QCOMPARE(imported.value()->rect().size(), padded);
    }

    void filesThatCannotBeOpened_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << _path(QStringLiteral("none.png"));
        QTest::newRow("a folder") << m_folder.path();
        QTest::newRow("a device") << QStringLiteral("/dev/zero");
        const auto write = [this](const QString &name, const QByteArray &bytes) {
            QFile file(_path(name));
            if (file.open(QIODevice::WriteOnly))
                file.write(bytes);
            return file.fileName();
        };
        QTest::newRow("empty") << write(QStringLiteral("empty.png"), {});
        QTest::newRow("foreign") << write(QStringLiteral("text.jpg"), "no image at all");
        // A BMP of 2^31 - 1 x 2^31 - 1 pixels in 60 bytes.
        QByteArray bmp = QByteArray::fromHex("424d3c00000000000000360000002800000"
                                             "0ffffff7fffffff7f0100180000000000");
        bmp.append(60 - bmp.size(), '\0');
        QTest::newRow("promises too much") << write(QStringLiteral("huge.bmp"), bmp);
    }

    void filesThatCannotBeOpened()
    {
        QFETCH(QString, path);
        const auto imported = importImage(path, {});
        QCOMPARE(titleOf(imported), "Open Failed");
        QCOMPARE(imported.failure().sentence, "Error! File Open Failed");
    }

    void imagesBeyondTheUsualLimitLoad()
    {
        QImageReader::setAllocationLimit(1);
        QImage image(700, 700, QImage::Format_RGB32); // 2 MB decoded
        image.fill(Qt::white);
        const QString path = _path(QStringLiteral("large.bmp"));
        QVERIFY(image.save(path));
        QVERIFY(QImageReader(path).read().isNull());
        QVERIFY(importImage(path, {.preview = false}));
    }

    void peakMemoryOfAnImport()
    {
        QImage image(1500, 1500, QImage::Format_RGB32);
        image.fill(0xFF808080U);
        const QString path = _path(QStringLiteral("memory.bmp"));
        QVERIFY(image.save(path));
        const double decoded = static_cast<double>(image.sizeInBytes());
        image = {};
        QVERIFY(importImage(path, {})); // everything that is loaded once is loaded
        const pid_t child = fork();
        if (child == 0) {
            const double before = statusBytes("VmRSS:");
            QFile reset(QStringLiteral("/proc/self/clear_refs"));
            if (reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
                reset.write("5");
            const auto imported =
                importImage(path, {.smoothing = 2.5, .trim = 3, .tiltVertical = 9});
            const double held = statusBytes("VmRSS:") - before;
            const double peak = statusBytes("VmHWM:") - before;
            const double scratch = 4.0 * static_cast<double>(imported.value()->cells());
            _exit(held > 3 * scratch && peak <= 1.3 * (held + scratch + decoded) ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), 0);
    }
};

QTEST_GUILESS_MAIN(TestImageImport)
#include "tst_imageimport.moc"

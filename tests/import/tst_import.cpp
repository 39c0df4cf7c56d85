#include "import/imageimport.h"
#include "import/importsession.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A dark frame around a ramp, so that nothing is padded.
QImage picture()
{
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (int y = 10; y < 30; ++y) {
        for (int x = 10; x < 50; ++x)
            image.setPixel(x, y, qRgb(4 * x, 4 * x, 4 * x));
    }
    return image;
}

std::unique_ptr<Relief> importedPicture(const ImportSettings &settings = {})
{
    return std::make_unique<Relief>(std::make_unique<ImportSource>(greyGrid(picture()), settings));
}

std::vector<float> heightsOf(const Relief &relief)
{
    return {relief.heights().constData(), relief.heights().constData() + relief.cells()};
}

std::vector<float> referenceOf(const Relief &relief)
{
    return {relief.referenceLayer().constData(),
            relief.referenceLayer().constData() + relief.cells()};
}

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

/// Decoders print their complaints; a test that provokes hundreds does without.
class Quiet
{
public:
    Quiet()
        : m_handler(
              qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}))
        , m_stderr(dup(STDERR_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~Quiet()
    {
        dup2(m_stderr, STDERR_FILENO);
        close(m_stderr);
        qInstallMessageHandler(m_handler);
    }

private:
    QtMessageHandler m_handler;
    int m_stderr;
};

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

class TestImport : public QObject
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

    void orientationTagsTurnTheImage()
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
        const FloatGrid &values = source.values();
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

    void whatCannotBeOpened_data()
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

    void whatCannotBeOpened()
    {
        QFETCH(QString, path);
        const auto imported = importImage(path, {});
        QCOMPARE(titleOf(imported), "Open Failed");
        QCOMPARE(imported.failure().sentence, "Error! File Open Failed");
    }

    void everyTruncationOfAnImageIsRefused_data()
    {
        QTest::addColumn<QByteArray>("whole");
        const auto encoded = [](const QImage &image, const char *format) {
            QByteArray bytes;
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::WriteOnly);
            image.save(&buffer, format);
            return bytes;
        };
        const QImage small = picture().scaled(12, 9);
        QTest::newRow("png") << encoded(small, "png").chopped(12); // all but the end chunk
        QTest::newRow("bmp 24") << encoded(small, "bmp");
        QTest::newRow("bmp 8") << encoded(small.convertToFormat(QImage::Format_Indexed8), "bmp");
        QTest::newRow("jpeg") << encoded(small, "jpg");
        QTest::newRow("jpeg with Exif") << jpegTurned(small, 3);
    }

    void everyTruncationOfAnImageIsRefused()
    {
        QFETCH(QByteArray, whole);
        const Quiet quiet;
        for (qsizetype length = 0; length < whole.size(); ++length) {
            QFile part(_path(QStringLiteral("cut")));
            QVERIFY(part.open(QIODevice::WriteOnly));
            part.write(whole.left(length));
            part.close();
            QVERIFY2(!importImage(part.fileName(), {}), QByteArray::number(length));
        }
    }

    void imagesBeyondTheUsualLimitLoad()
    {
        // Eight bytes a pixel: 278 MB decoded.
        QImage image(5900, 5900, QImage::Format_RGBA64);
        image.fill(Qt::white);
        const QString path = _path(QStringLiteral("large.png"));
        QVERIFY(image.save(path));
        image = {};
        QVERIFY(importImage(path, {.preview = false}));
        QFile::remove(path);
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

    void aFreshImportKeepsItsReference()
    {
        const auto plain = importedPicture();
        QVERIFY(heightsOf(*plain) == referenceOf(*plain));
        QCOMPARE(plain->rangeMaximum, 196.0);
        const auto hidden = importedPicture({.preview = false, .trim = 5, .depth = 10.0});
        QVERIFY(heightsOf(*hidden) == referenceOf(*hidden));
        QCOMPARE(hidden->rangeMaximum, 196.0);
    }

    void settersRecomputeFromTheSource()
    {
        const auto relief = importedPicture();
        const std::vector<float> original = heightsOf(*relief);
        ImportSession session;
        int changes = 0;
        session.changed = [&changes] { ++changes; };
        session.attach(relief.get());
        session.setSmoothing(2.5);
        session.setTrim(20);
        session.setTilt(50, -50);
        session.setRaiseLower(70);
        session.setInvertZ(true);
        QVERIFY(heightsOf(*relief) != original);
        QVERIFY(heightsOf(*relief) == referenceOf(*relief));
        session.setInvertZ(false);
        session.setRaiseLower(0);
        session.setTilt(0, 0);
        session.setTrim(0);
        session.setSmoothing(0.0);
        QVERIFY(heightsOf(*relief) == original);
        QCOMPARE(changes, 10);
    }

    void theOrderOfSettingsDoesNotMatter()
    {
        const ImportSettings settings{.flipY = true,
                                      .invertZ = true,
                                      .smoothing = 1.5,
                                      .raiseLower = -20,
                                      .trim = 2,
                                      .tiltHorizontal = 30,
                                      .depth = 40.0};
        const auto atOnce = importedPicture(settings);
        const auto oneByOne = importedPicture();
        ImportSession session;
        session.attach(oneByOne.get());
        session.setTilt(30, 0);
        session.setDepth(40.0); // the slope is rebuilt for the new depth
        session.setTrim(2);
        session.setRaiseLower(-20);
        session.setSmoothing(1.5);
        session.setInvertZ(true);
        session.setFlipY(true);
        QVERIFY(session.settings() == settings);
        QVERIFY(heightsOf(*oneByOne) == heightsOf(*atOnce));
    }

    void tiltCountsWithoutPreviewToo()
    {
        const auto flat = importedPicture({.preview = false});
        const auto tilted = importedPicture({.preview = false, .tiltHorizontal = 100});
        QVERIFY(heightsOf(*flat) != heightsOf(*tilted));
    }

    void settersMarkTheReliefChanged()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        for (const bool preview : {false, true}) {
            relief->heightsChanged = false;
            relief->frameRegion = {};
            session.setPreview(preview);
            QVERIFY(relief->heightsChanged);
            QCOMPARE(relief->frameRegion, QRegion(relief->rect()));
        }
    }

    void withoutPreviewTheReferenceStays()
    {
        const auto relief = importedPicture();
        const std::vector<float> before = referenceOf(*relief);
        ImportSession session;
        session.attach(relief.get());
        session.setPreview(false);
        session.setInvertZ(true);
        QVERIFY(heightsOf(*relief) != before);
        QVERIFY(referenceOf(*relief) == before);
    }

    void whatMakesTheResultStale()
    {
        const auto relief = importedPicture();
        auto &source = *static_cast<ImportSource *>(relief->source());
        ImportSession session;
        session.attach(relief.get());
        QVERIFY(session.dirty());
        source.dirty = false;
        session.setPreview(false);
        session.setPreview(true);
        session.setBasRelief(true);
        QVERIFY(!session.dirty());
        const std::vector<std::function<void()>> changes{
            [&] { session.setFlipY(true); },         [&] { session.setInvertZ(true); },
            [&] { session.setTransparency(false); }, [&] { session.setSmoothing(1); },
            [&] { session.setRaiseLower(1); },       [&] { session.setTrim(1); },
            [&] { session.setTilt(1, 0); },          [&] { session.setGridSize(4); },
            [&] { session.setContrastFactor(16); },  [&] { session.setSmoothness(50000); }};
        for (const auto &change : changes) {
            source.dirty = false;
            change();
            QVERIFY(session.dirty());
        }
    }

    void basReliefRunsOnUpdateOnly()
    {
        const auto relief = importedPicture();
        ImportSession session;
        int runs = 0;
        session.basReliefGenerator = [&runs](const BasReliefInput &input, Progress &) {
            ++runs;
            const size_t cells =
                static_cast<size_t>(input.width) * static_cast<size_t>(input.height);
            return std::optional(std::vector<float>(cells, static_cast<float>(input.gridSize)));
        };
        session.attach(relief.get());
        session.setBasRelief(true);
        session.setGridSize(8);
        QCOMPARE(runs, 0);
        session.update(nullptr);
        QCOMPARE(runs, 1);
        QVERIFY(!session.dirty());
        QCOMPARE(relief->heightAt(0), 8.0F);
        QVERIFY(heightsOf(*relief) == referenceOf(*relief));
        // Off and on again shows the last result without computing it.
        session.setBasRelief(false);
        QCOMPARE(relief->heightAt(0), 0.0F);
        session.setBasRelief(true);
        QCOMPARE(relief->heightAt(0), 8.0F);
        QCOMPARE(runs, 1);
        // A stale result is not shown.
        session.setInvertZ(true);
        QCOMPARE(relief->heightAt(0), 0.0F);
        QVERIFY(session.dirty());
    }

    void aCancelledBasReliefKeepsTheHeights()
    {
        const auto relief = importedPicture();
        const std::vector<float> before = heightsOf(*relief);
        ImportSession session;
        session.attach(relief.get());
        session.setBasRelief(true);
        session.update(nullptr); // no generator
        QVERIFY(session.dirty());
        session.basReliefGenerator = [](const BasReliefInput &,
                                        Progress &) -> std::optional<std::vector<float>> {
            return {};
        };
        session.update(nullptr);
        QVERIFY(session.dirty());
        QVERIFY(heightsOf(*relief) == before);
    }

    void acceptingEndsTheImport()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        session.setTrim(3);
        const std::vector<float> heights = heightsOf(*relief);
        session.accept();
        QVERIFY(!session.active() && !session.dirty() && !relief->source());
        session.setTrim(9);
        QVERIFY(heightsOf(*relief) == heights);
    }

    void aResizedReliefIsLeftAlone()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        Relief::Grid small{2, 2, GridLayer(4), GridLayer(4), GridLayer(4), GridLayer(4)};
        Relief::Grid old = relief->replaceGrid(std::move(small));
        QVERIFY(!session.active());
        session.setInvertZ(true);
        session.update(nullptr);
        QCOMPARE(relief->heightAt(3), 0.0F);
        relief->replaceGrid(std::move(old));
        QVERIFY(session.active());
    }

    void aNewFileStartsFromTheControls()
    {
        ImportSession session;
        session.setFlipY(true);
        session.setSmoothing(99.0); // clamped
        session.setTrim(7);
        session.setGridSize(16);
        const ImportSettings expected{.flipY = true, .smoothing = 5.0};
        QVERIFY(session.openingSettings() == expected);
    }

    void sliderPositions()
    {
        QCOMPARE(gridSizeOfSlider(1), 2);
        QCOMPARE(gridSizeOfSlider(5), 32);
        QCOMPARE(gridSizeOfSlider(9), 4);
        QCOMPARE(contrastFactorOfSlider(16), 65536);
        QCOMPARE(smoothnessOfSlider(1), 20000);
        QCOMPARE(smoothnessOfSlider(9), 10000000);
        QCOMPARE(smoothnessOfSlider(10), 100000);
    }
};

QTEST_GUILESS_MAIN(TestImport)
#include "tst_import.moc"

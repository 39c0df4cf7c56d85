#include "files/pictures/picturefile.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <cmath>
#include <functional>
#include <limits>

#include <tiffio.h>
#include <zlib.h>

using namespace marlowen;

namespace {

constexpr int width = 40;
constexpr int height = 37;

/// The channels of a pixel of the test pictures.
uint16_t channel(int x, int y, int index)
{
    const auto value = static_cast<uint16_t>(x * 1531 + y * 307);
    return static_cast<uint16_t>(index == 0 ? value : index == 1 ? 65535 - value : value / 2);
}

/// How a TIFF stores them.
struct TiffForm
{
    const char *mode = "wl";
    uint16_t bits = 16;
    uint16_t samples = 1;
    bool floats = false;
    bool tiled = false;
    bool separate = false;
    bool palette = false;
    uint16_t compression = COMPRESSION_NONE;
};

QByteArray sampleBytes(const TiffForm &form, int x, int y, int index)
{
    const uint16_t value = channel(x, y, index);
    const float real = x == 3 && y == 2 ? std::numeric_limits<float>::quiet_NaN() : float(value);
    if (form.floats)
        return {reinterpret_cast<const char *>(&real), sizeof(real)};
    if (form.bits == 8)
        return {1, static_cast<char>(value >> 8)};
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

/// The samples of a block; those beyond the picture do not matter.
QByteArray block(const TiffForm &form, const QRect &cells, int plane)
{
    QByteArray bytes;
    for (int y = cells.top(); y <= cells.bottom(); ++y) {
        for (int x = cells.left(); x <= cells.right(); ++x) {
            for (int i = 0; i < (form.separate ? 1 : form.samples); ++i)
                bytes += sampleBytes(form, x, y, form.separate ? plane : i);
        }
    }
    return bytes;
}

void describe(TIFF *tiff, const TiffForm &form)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, form.floats ? 32 : form.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, form.samples);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, form.compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, form.separate ? 2 : 1);
    if (form.floats)
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
    const int plain = form.samples == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, form.palette ? PHOTOMETRIC_PALETTE : plain);
    if (form.palette) {
        std::vector<uint16_t> colors(256);
        for (size_t i = 0; i < colors.size(); ++i)
            colors[i] = static_cast<uint16_t>(i * 257);
        TIFFSetField(tiff, TIFFTAG_COLORMAP, colors.data(), colors.data(), colors.data());
    }
}

/// A picture, then a page that must not be read.
void writeTiff(const QString &path, const TiffForm &form)
{
    TIFF *tiff = TIFFOpen(qPrintable(path), form.mode);
    describe(tiff, form);
    for (int plane = 0; plane < (form.separate ? form.samples : 1); ++plane) {
        const auto number = static_cast<uint16_t>(plane);
        if (form.tiled) {
            TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
            TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
            for (uint32_t y = 0; y < height; y += 16) {
                for (uint32_t x = 0; x < width; x += 16) {
                    QByteArray bytes = block(form, {int(x), int(y), 16, 16}, plane);
                    TIFFWriteTile(tiff, bytes.data(), x, y, 0, number);
                }
            }
            continue;
        }
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 10);
        for (int y = 0; y < height; y += 10) {
            QByteArray bytes = block(form, {0, y, width, std::min(10, height - y)}, plane);
            TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, uint32_t(y), number), bytes.data(),
                                  bytes.size());
        }
    }
    TIFFWriteDirectory(tiff);
    describe(tiff, {.bits = 8});
    for (uint32_t y = 0; y < height; ++y)
        TIFFWriteScanline(tiff, QByteArray(width, '\7').data(), y);
    TIFFClose(tiff);
}

double expected(const TiffForm &form, int x, int y)
{
    const auto sample = [&](int index) { return double(channel(x, y, index)); };
    if (form.floats)
        return x == 3 && y == 2 ? 0.0 : sample(0);
    if (form.bits == 8)
        return std::floor(sample(0) / 256);
    return form.samples == 1 ? sample(0) / 257
                             : (11 * sample(0) + 16 * sample(1) + 5 * sample(2)) / 32 / 257;
}

/// A dark column at the left of a light picture.
QByteArray leftDark(const char *format)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int y = 0; y < height; ++y)
        image.setPixel(0, y, qRgb(77, 77, 77));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.convertToFormat(QImage::Format_Grayscale8).save(&buffer, format);
    return bytes;
}

/// A PNG with one more chunk behind its header.
QByteArray withChunk(QByteArray png, const QByteArray &type, const QByteArray &data)
{
    const QByteArray named = type + data;
    QByteArray chunk(4, '\0');
    qToBigEndian(quint32(data.size()), chunk.data());
    chunk += named + QByteArray(4, '\0');
    qToBigEndian(
        quint32(crc32(0, reinterpret_cast<const Bytef *>(named.constData()), uInt(named.size()))),
        chunk.data() + chunk.size() - 4);
    return png.insert(33, chunk);
}

/// A BMP of 4 x 2 pixels whose info header, masks included, and data are given.
QByteArray bmp(int bits, int compression, const QByteArray &masks, const QByteArray &data)
{
    QByteArray head(54, '\0');
    head.replace(0, 2, "BM");
    head[10] = char(54 + masks.size());
    head[14] = 40;
    head[18] = 4;
    head[22] = 2;
    head[26] = 1;
    head[28] = char(bits);
    head[30] = char(compression);
    if (bits <= 8)
        head[46] = 2; // colours
    return head + masks + data;
}

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    Result<GreyPicture> _read(const QByteArray &bytes)
    {
        QFile file(m_folder.filePath(QStringLiteral("picture.png")));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        file.close();
        return readGreyPicture(file.fileName());
    }

private slots:
    void tiffsOfEveryKind_data()
    {
        QTest::addColumn<TiffForm>("form");
        QTest::newRow("16 bits") << TiffForm{};
        QTest::newRow("big-endian") << TiffForm{.mode = "wb"};
        QTest::newRow("large file") << TiffForm{.mode = "wl8", .compression = COMPRESSION_LZW};
        QTest::newRow("colours") << TiffForm{.samples = 3, .compression = COMPRESSION_LZW};
        QTest::newRow("tiles") << TiffForm{.samples = 3, .tiled = true};
        QTest::newRow("separate") << TiffForm{.mode = "wb", .samples = 3, .separate = true};
        QTest::newRow("separate tiles") << TiffForm{.samples = 3, .tiled = true, .separate = true};
        QTest::newRow("floats") << TiffForm{.floats = true};
        QTest::newRow("float tiles") << TiffForm{.mode = "wb", .floats = true, .tiled = true};
        QTest::newRow("8 bits") << TiffForm{.bits = 8};
        QTest::newRow("palette") << TiffForm{.bits = 8, .tiled = true, .palette = true};
    }
    void tiffsOfEveryKind()
    {
        QFETCH(TiffForm, form);
        QFile::remove(m_folder.filePath(QStringLiteral("a.tif")));
        const QString path = m_folder.filePath(QStringLiteral("a.tif"));
        writeTiff(path, form);
        const auto read = readGreyPicture(path);
        QVERIFY2(read, read ? "" : qPrintable(read.failure().detail));
        const FloatGrid &grid = read.value().values;
        QCOMPARE(grid.width, width);
        QCOMPARE(grid.height, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                QVERIFY2(std::fabs(double(grid.row(y)[x]) - expected(form, x, y)) < 1e-4,
                         qPrintable(QStringLiteral("%1 %2: %3").arg(x).arg(y).arg(grid.row(y)[x])));
        }
    }

    void sixteenBitsKeepTheirLevels()
    {
        QImage ramp(1000, 2, QImage::Format_Grayscale16);
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 1000; ++x)
                reinterpret_cast<quint16 *>(ramp.scanLine(y))[x] = quint16(65535 - 37 * x);
        }
        const FloatGrid grid = greyGrid(ramp);
        QCOMPARE(grid.row(1)[0], 255.0F);
        for (int x = 1; x < 1000; ++x)
            QVERIFY(grid.row(1)[x] < grid.row(1)[x - 1]);
    }

    void orientationAndTransparencyOfPng()
    {
        const QByteArray turnedRight =
            QByteArray::fromHex("49492a00080000000100120103000100000006000000"
                                "00000000");
        const auto turned = _read(withChunk(leftDark("png"), "eXIf", turnedRight));
        QVERIFY(turned);
        QCOMPARE(turned.value().values.width, height);
        QCOMPARE(turned.value().values.row(0)[5], 77.0F);
        QCOMPARE(turned.value().values.row(width - 1)[5], 255.0F);
        const auto clear = _read(withChunk(leftDark("png"), "tRNS", QByteArray("\0\x4d", 2)));
        QVERIFY(clear);
        QCOMPARE(clear.value().values.row(5)[0], 77.0F);
    }

    void bitFields_data()
    {
        QTest::addColumn<QByteArray>("masks");
        QTest::addColumn<bool>("readable");
        QTest::newRow("5 6 5") << QByteArray::fromHex("00f80000e00700001f000000") << true;
        QTest::newRow("1 2 3") << QByteArray::fromHex("010000000600000038000000") << false;
        QTest::newRow("with holes") << QByteArray::fromHex("05000000e00700000018 0000") << false;
        QTest::newRow("9 bits") << QByteArray::fromHex("ff010000000200000004 0000") << false;
        QTest::newRow("overlapping") << QByteArray::fromHex("00f80000f00f00001f000000") << false;
        QTest::newRow("missing") << QByteArray::fromHex("00f80000e007000000000000") << false;
    }
    void bitFields()
    {
        QFETCH(QByteArray, masks);
        QFETCH(bool, readable);
        const auto read = _read(bmp(16, 3, masks, QByteArray(16, '\xff')));
        QCOMPARE(bool(read), readable);
        if (readable)
            QVERIFY(read.value().values.row(1)[3] >= 248.0F);
    }

    void damagedPicturesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray jpeg = leftDark("jpg");
        QTest::newRow("cut JPEG with an end mark") << jpeg.left(jpeg.size() - 40) + "\xFF\xD9";
        const QByteArray colors("\0\0\0\0\xff\xff\xff\0", 8);
        QTest::newRow("cut RLE8") << bmp(8, 1, colors, QByteArray("\4\1\0\0\2", 5));
        QTest::newRow("cut RLE4") << bmp(4, 2, colors, QByteArray("\4\x11\0\0\0\4\x11", 7));
        QByteArray broken = leftDark("png");
        broken[broken.size() - 20] = char(~broken[broken.size() - 20]);
        QTest::newRow("wrong checksum") << broken;
        QByteArray bomb = leftDark("png");
        bomb[18] = 0x30; // 12 328 columns
        bomb[22] = 0x30;
        const auto *start = reinterpret_cast<const Bytef *>(bomb.constData()) + 12;
        qToBigEndian(quint32(crc32(0, start, 17)), bomb.data() + 29);
        QTest::newRow("bomb") << bomb;
        QTest::newRow("vector graphics")
            << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
        QTest::newRow("GIF") << QByteArray("GIF89a\1\0\1\0\0\0\0,\0\0\0\0\1\0\1\0\0\2\1D\0;", 28);
    }
    void damagedPicturesAreRefused()
    {
        QFETCH(QByteArray, bytes);
        const auto read = _read(bytes);
        QVERIFY(!read);
        QVERIFY(!read.failure().detail.isEmpty());
    }

    void wholeRunLengthDataIsRead()
    {
        const QByteArray colors("\0\0\0\0\xff\xff\xff\0", 8);
        for (const QByteArray &end : {QByteArray("\0\1", 2), QByteArray()}) {
            const auto read = _read(bmp(8, 1, colors, QByteArray("\4\1\0\0\4\1", 6) + end));
            QVERIFY(read);
            QCOMPARE(read.value().values.row(0)[3], 255.0F);
        }
    }

    void largePicturesAreAveragedDown()
    {
        PictureGrid picture(QSize(40000, 500));
        QVERIFY(picture.averaged());
        std::vector<float> row(40000);
        for (int y = 0; y < 500; ++y) {
            for (size_t x = 0; x < row.size(); ++x)
                row[x] = float(x) + float(y);
            picture.addRow(row.data());
        }
        const GreyPicture small = picture.take();
        QVERIFY(small.note.contains(QStringLiteral("40000 x 500")));
        const FloatGrid &grid = small.values;
        const double scale = std::sqrt(999.0 / (40000.0 * 500.0 / 128.0 / 128.0));
        QCOMPARE(grid.width, qRound(40000 * scale));
        QCOMPARE(grid.height, qRound(500 * scale));
        for (const int y : {0, 200, grid.height - 1}) {
            for (const int x : {0, 17, grid.width - 1}) {
                const double centre =
                    (x + 0.5) * 40000 / grid.width - 0.5 + (y + 0.5) * 500 / grid.height - 0.5;
                QVERIFY(std::fabs(double(grid.row(y)[x]) - centre) < 0.2);
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestPictures)
#include "tst_pictures.moc"

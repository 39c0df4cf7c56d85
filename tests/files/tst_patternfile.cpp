#include "files/heightpicture.h"
#include "files/patternfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

using namespace marlowen;

namespace {

struct CancelAt : Progress
{
    explicit CancelAt(double share)
        : limit(share)
    {
    }
    void advance(double fraction) override { done = fraction; }
    bool cancelled() const override { return done >= limit; }
    double limit;
    double done = 0.0;
};

Progress quietly;

/// A dome with an empty border, and values that only bits tell apart.
FloatGrid dome(int width, int height)
{
    FloatGrid grid(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double r = std::hypot(x - width / 2.0, y - height / 2.0) / (width / 2.0);
            grid.row(y)[x] = r < 0.9 ? static_cast<float>(std::cos(r) * width / 3.0) : 0.0F;
        }
    }
    grid.values.back() = std::numeric_limits<float>::denorm_min();
    return grid;
}

PatternToSave patternOf(const FloatGrid &grid)
{
    return {{QStringLiteral("Rosette, ä"), QStringLiteral("A. Carver"), QStringLiteral("mm"),
             QStringLiteral("2024-05-06T07:08:09Z")},
            1.0 / 3.0,
            {grid.values.data(), grid.width, grid.height}};
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void store(const QString &path, const QByteArray &bytes)
{
    // Some file systems wait for the disk when a file is truncated and written again.
    QFile::remove(path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// Bytes whose digest is right again.
QByteArray sealed(QByteArray bytes)
{
    bytes.chop(16);
    return bytes + QCryptographicHash::hash(bytes, QCryptographicHash::Md5);
}

bool sameBits(const FloatGrid &a, const FloatGrid &b)
{
    return a.width == b.width && a.height == b.height && a.values.size() == b.values.size() &&
           std::memcmp(a.values.data(), b.values.data(), a.values.size() * sizeof(float)) == 0;
}

} // namespace

class TestPatternFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("p.ptr"));

    QByteArray _small()
    {
        const FloatGrid grid = dome(7, 5);
        return savePattern(patternOf(grid), m_path, quietly) ? contents(m_path) : QByteArray();
    }

    /// The failure of loading bytes has a sentence; nothing else is asked of it.
    void _refused(const QByteArray &bytes, const QByteArray &what)
    {
        store(m_path, bytes);
        const Result<Pattern> loaded = loadPattern(m_path, quietly);
        QVERIFY2(!loaded, what.constData());
        QCOMPARE(loaded.failure().title, QStringLiteral("Invalid File"));
        QVERIFY(!loaded.failure().sentence.isEmpty());
    }

private slots:
    void savedPatternIsLoadedUnchanged_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("one cell") << 1 << 1;
        QTest::newRow("one row") << 3 << 1;
        QTest::newRow("a block to the cell") << 256 << 256;
        QTest::newRow("several blocks") << 300 << 511;
    }

    void savedPatternIsLoadedUnchanged()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        const FloatGrid grid = dome(width, height);
        const PatternToSave pattern = patternOf(grid);
        QVERIFY(savePattern(pattern, m_path, quietly));
        Result<Pattern> loaded = loadPattern(m_path, quietly);
        QVERIFY(loaded);
        QVERIFY(sameBits(loaded.value().heights, grid));
        QCOMPARE(loaded.value().info.zScale, 1.0 / 3.0);
        const Result<PatternInfo> info = readPatternInfo(m_path);
        QVERIFY(info);
        const PatternAttributes &read = info.value().attributes;
        QCOMPARE(read.title, pattern.attributes.title);
        QCOMPARE(read.author, pattern.attributes.author);
        QCOMPARE(read.units, pattern.attributes.units);
        QCOMPARE(read.created, pattern.attributes.created);
        QCOMPARE(QSize(info.value().width, info.value().height), QSize(width, height));
        QCOMPARE(info.value().thumbnail, heightThumbnail(pattern.heights, pattern.zScale, 256));
    }

    void emptyCellsTakeNoRoom()
    {
        const FloatGrid grid(1000, 1000);
        QVERIFY(savePattern(patternOf(grid), m_path, quietly));
        QVERIFY(QFile(m_path).size() < 40000);
        QVERIFY(sameBits(loadPattern(m_path, quietly).take().heights, grid));
    }

    void cutAndFlippedFilesAreRefused()
    {
        const QByteArray bytes = _small();
        QVERIFY(bytes.size() > 100);
        for (qsizetype size = 0; size < bytes.size(); ++size)
            _refused(bytes.left(size), "cut at " + QByteArray::number(size));
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            for (const int bits : {0x01, 0x80, 0xff}) {
                QByteArray damaged = bytes;
                damaged[i] = static_cast<char>(damaged[i] ^ bits);
                _refused(damaged, "flipped at " + QByteArray::number(i));
            }
        }
        _refused(bytes + 'x', "more than there should be");
        store(m_path, bytes);
        QVERIFY(loadPattern(m_path, quietly));
    }

    /// Files with a right digest and wrong contents.
    void inconsistentSizesAreRefused()
    {
        const QByteArray bytes = _small();
        const qsizetype size = bytes.indexOf("2024") + 21; // of the width, after the header's end
        QCOMPARE(bytes.mid(size, 8).toHex(), QByteArray("0000000700000005"));
        const auto with = [&](qsizetype at, const char *hex) {
            QByteArray changed = bytes;
            const QByteArray raw = QByteArray::fromHex(hex);
            return sealed(changed.replace(at, raw.size(), raw));
        };
        _refused(with(size, "7fffffff00000001"), "two thousand million cells");
        _refused(with(size, "ffffffffffffffff"), "four thousand million squared");
        _refused(with(size, "0000000000000005"), "no columns");
        _refused(with(size, "0000000700000004"), "another block size");
        _refused(with(4, "0000"), "version 0");
        _refused(with(3, "42"), "another type");
        const qsizetype thumbnail = bytes.indexOf("\x89PNG") - 4;
        _refused(with(thumbnail, "ffffffff"), "a thumbnail of 4 GB");
        const qsizetype block = bytes.indexOf("IEND") + 8;
        _refused(with(block, "01ffffffff"), "a block of 4 GB");
        _refused(with(block, "02"), "another form");

        store(m_path, with(4, "0002"));
        QVERIFY(loadPattern(m_path, quietly).failure().sentence.contains("newer version"));
        QVERIFY(readPatternInfo(m_path).failure().sentence.contains("newer version"));
    }

    void impossibleHeightsBecomeEmpty()
    {
        FloatGrid grid(2, 2, {1.0F, -1.0F, std::nanf(""), HUGE_VALF});
        QVERIFY(savePattern(patternOf(grid), m_path, quietly));
        const Result<Pattern> loaded = loadPattern(m_path, quietly);
        QVERIFY(loaded);
        QCOMPARE(loaded.value().heights.values, (std::vector<float>{1.0F, 0.0F, 0.0F, 0.0F}));
    }

    void failuresKeepTheOldFile()
    {
        const QByteArray before = _small();
        const FloatGrid grid = dome(400, 400);
        CancelAt half(0.5);
        QCOMPARE(savePattern(patternOf(grid), m_path, half).failure().title,
                 QStringLiteral("Save Failed"));
        PatternToSave wordy = patternOf(grid);
        wordy.attributes.author = QString(70000, QLatin1Char('a'));
        QCOMPARE(savePattern(wordy, m_path, quietly).failure().detail,
                 QStringLiteral("String too long"));
        QCOMPARE(contents(m_path), before);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        QCOMPARE(loadPattern(m_folder.filePath(QStringLiteral("none")), quietly).failure().title,
                 QStringLiteral("Open Failed"));
    }

    void picturesAreLitFromTheTopLeft()
    {
        const FloatGrid grid = dome(600, 300);
        const QImage image = heightThumbnail({grid.values.data(), 600, 300}, 1.0, 60);
        QCOMPARE(image.size(), QSize(60, 30));
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        const auto brightness = [&image](int x, int y) { return qGray(image.pixel(x, y)); };
        // The rim of the dome is cut off above and below, so that its top reaches both edges.
        QVERIFY(brightness(15, 5) > brightness(30, 15));
        QVERIFY(brightness(30, 15) > brightness(45, 25));
        const FloatGrid tall(1, 5000);
        QCOMPARE(heightThumbnail({tall.values.data(), 1, 5000}, 1.0, 64).size(), QSize(1, 64));
    }
};

QTEST_GUILESS_MAIN(TestPatternFile)
#include "tst_patternfile.moc"

#include "relief/grid/relief.h"
#include "relief/grid/reliefstream.h"
#include "relief/selection/selectionedits.h"
#include "relief/selection/selections.h"
#include "relief/tools/tool.h"

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QtTest>

#include <algorithm>
#include <cstring>
#include <limits>

#include <unistd.h>

using namespace marlowen;

namespace {

/// Heights column + 10 * row + 0.25, reference heights one more.
std::unique_ptr<Relief> ramp(int width, int height)
{
    auto relief = std::make_unique<Relief>(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float value = static_cast<float>(x + 10 * y) + 0.25F;
            relief->heights().data()[relief->index(x, y)] = value;
            relief->referenceLayer().data()[relief->index(x, y)] = value + 1.0F;
        }
    }
    return relief;
}

QByteArray streamed(const Relief &relief)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    return writeRelief(stream, relief) ? bytes : QByteArray();
}

ReliefRead readBack(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    return readRelief(stream);
}

bool sameValues(const GridLayer &a, const GridLayer &b)
{
    return a.size() == b.size() && std::memcmp(a.constData(), b.constData(),
                                               static_cast<size_t>(a.size()) * sizeof(float)) == 0;
}

bool allZero(const GridLayer &layer)
{
    return std::all_of(layer.constData(), layer.constData() + layer.size(),
                       [](float value) { return value == 0.0F; });
}

qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').at(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// A source whose heights are 5 everywhere.
class FlatSource : public ReliefSource
{
public:
    int width() const override { return 3; }
    int height() const override { return 2; }
    double valueRange() const override { return 7.5; }
    void computeHeights(float *heights) override { std::fill_n(heights, 6, 5.0F); }
};

} // namespace

class TestRelief : public QObject
{
    Q_OBJECT

private slots:
    void aReliefTakesHeightsAndRangeFromItsSource()
    {
        const Relief relief(std::make_unique<FlatSource>());
        QCOMPARE(relief.rect(), QRect(0, 0, 3, 2));
        QCOMPARE(relief.heightAt(2, 1), 5.0F);
        QVERIFY(sameValues(relief.heights(), relief.referenceLayer()));
        QCOMPARE(relief.rangeMinimum, 0.0);
        QCOMPARE(relief.rangeMaximum, 7.5);
        QVERIFY(relief.source());
    }

    void strokePointsAddressCells()
    {
        const Relief relief(5, 4);
        QCOMPARE(relief.cellOf({0.0, 0.0}), QPoint(2, 2));
        QCOMPARE(relief.cellOf({-2.5, -2.0}), QPoint(0, 0));
        QCOMPARE(relief.cellOf({2.49, 1.99}), QPoint(4, 3));
        const QPoint nowhere = relief.cellOf({std::numeric_limits<double>::quiet_NaN(), 0.0});
        QVERIFY(!relief.contains(nowhere.x(), nowhere.y()));
        const QPoint far = relief.cellOf({0.0, 1e300});
        QVERIFY(!relief.contains(far.x(), far.y()));
    }

    void untouchedLayersTakeNoMemory()
    {
        constexpr int side = 2000;
        constexpr qint64 layerBytes = qint64{side} * side * static_cast<qint64>(sizeof(float));
        // The second relief gets memory that the first one gave back.
        for (int round = 0; round < 3; ++round) {
            const qint64 before = residentBytes();
            Relief relief(side, side);
            float sum = 0.0F;
            for (qsizetype i = 0; i < relief.cells(); i += 512)
                sum += relief.heightAt(i);
            QCOMPARE(sum, 0.0F);
            QVERIFY(residentBytes() - before < layerBytes / 4);
            std::fill_n(relief.heights().data(), relief.cells(), 1.0F);
            QVERIFY(residentBytes() - before >= layerBytes);
        }
    }

    void aLayerKnowsWhetherItWasWritten()
    {
        GridLayer layer(4);
        layer.data()[3] = 2.0F;
        GridLayer copy(4);
        copy.copyFrom(layer);
        QVERIFY(copy.written());
        QCOMPARE(copy.constData()[3], 2.0F);
        layer.clear();
        QVERIFY(!layer.written() && allZero(layer));
        copy.copyFrom(layer);
        QVERIFY(!copy.written() && allZero(copy));
    }

    void replaceGridReturnsTheOldGrid()
    {
        const auto relief = ramp(3, 2);
        relief->snapshotLayer().data()[0] = 1.0F;
        relief->heightsChanged = relief->appearanceChanged = false;
        Relief::Grid fresh{2, 2, GridLayer(4), GridLayer(4), GridLayer(4), GridLayer(4)};
        fresh.heights.data()[3] = 9.0F;
        const Relief::Grid old = relief->replaceGrid(std::move(fresh));
        QCOMPARE(old.width, 3);
        QCOMPARE(old.heights.constData()[5], 12.25F);
        QCOMPARE(relief->rect(), QRect(0, 0, 2, 2));
        QCOMPARE(relief->heightAt(1, 1), 9.0F);
        QCOMPARE(relief->snapshotLayer().size(), 4);
        QVERIFY(!relief->snapshotLayer().written());
        QVERIFY(relief->heightsChanged && relief->appearanceChanged);
        QCOMPARE(relief->frameRegion, QRegion(0, 0, 2, 2));
    }

    void streamLayout()
    {
        const auto relief = ramp(2, 3);
        relief->zScale = 1.5;
        const QByteArray bytes = streamed(*relief);
        QCOMPARE(bytes.size(), 8 + 24 + 96);
        QCOMPARE(bytes.left(16).toHex(), QByteArray("00000002000000033ff8000000000000"));
        // heights[1] = 1.25, reference[0] = 1.25
        QCOMPARE(bytes.mid(40, 8).toHex(), QByteArray("3ff4000000000000"));
        QCOMPARE(bytes.mid(80, 8).toHex(), QByteArray("3ff4000000000000"));
    }

    void streamingRestoresEveryBit_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("one cell") << QSize(1, 1);
        QTest::newRow("odd") << QSize(7, 5);
        QTest::newRow("longer than a block") << QSize(300, 331);
    }

    void streamingRestoresEveryBit()
    {
        QFETCH(QSize, size);
        const auto relief = ramp(size.width(), size.height());
        relief->heights().data()[0] = 0.1F; // not a short fraction
        relief->zScale = 0.7;
        relief->rangeMinimum = -1.0 / 3.0;
        relief->rangeMaximum = 254.9;
        relief->maskLayer().data()[0] = 1.0F;
        const ReliefRead read = readBack(streamed(*relief));
        QVERIFY(read.relief);
        QCOMPARE(read.repaired, 0);
        QCOMPARE(read.relief->rect(), relief->rect());
        QCOMPARE(read.relief->zScale, 0.7);
        QCOMPARE(read.relief->rangeMinimum, -1.0 / 3.0);
        QCOMPARE(read.relief->rangeMaximum, 254.9);
        QVERIFY(sameValues(read.relief->heights(), relief->heights()));
        QVERIFY(sameValues(read.relief->referenceLayer(), relief->referenceLayer()));
        QVERIFY(allZero(read.relief->maskLayer()));
    }

    void sizesThatTheStreamCannotHoldTakeNoMemory_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("huge") << 2147483647 << 2147483647;
        QTest::newRow("large") << 40000 << 40000;
        QTest::newRow("product of 32 bits is 0") << 65536 << 65536;
        QTest::newRow("negative") << -3 << -2;
        QTest::newRow("no columns") << 0 << 6;
    }

    void sizesThatTheStreamCannotHoldTakeNoMemory()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QByteArray bytes;
        QDataStream(&bytes, QIODevice::WriteOnly) << width << height;
        bytes.append(1000, '\0');
        const qint64 before = residentBytes();
        QVERIFY(!readBack(bytes).relief);
        QVERIFY(residentBytes() - before < (qint64{8} << 20));
    }

    void invalidValuesAreReplaced()
    {
        const auto relief = ramp(3, 2);
        float *heights = relief->heights().data();
        heights[0] = -1.0F;
        heights[1] = std::numeric_limits<float>::quiet_NaN();
        heights[2] = std::numeric_limits<float>::infinity();
        relief->referenceLayer().data()[5] = -1e-30F;
        relief->zScale = std::numeric_limits<double>::quiet_NaN();
        relief->rangeMaximum = std::numeric_limits<double>::infinity();
        const ReliefRead read = readBack(streamed(*relief));
        QVERIFY(read.relief);
        QCOMPARE(read.repaired, 6);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(read.relief->heightAt(i), 0.0F);
        QCOMPARE(read.relief->heightAt(3), 10.25F);
        QCOMPARE(read.relief->referenceLayer().constData()[5], 0.0F);
        QCOMPARE(read.relief->zScale, 1.0);
        QCOMPARE(read.relief->rangeMaximum, 0.0);
    }

    // Across the border of the words that hold the cells.
    void growShrinkAndInvert()
    {
        Relief relief(130, 9);
        const auto count = [&relief] {
            const float *cells = relief.selectionLayer().constData();
            return std::count(cells, cells + relief.cells(), 1.0F);
        };
        QVERIFY(!growSelection(relief, 1) && !invertSelection(relief));
        selectRectangle(relief, {63, 4}, {63, 4}, SelectionModifier::Normal);
        QVERIFY(growSelection(relief, 2));
        QCOMPARE(count(), 3 + 5 + 5 + 5 + 3);
        QVERIFY(shrinkSelection(relief, 2));
        QCOMPARE(count(), 1);
        QVERIFY(!shrinkSelection(relief, 1));
        QCOMPARE(count(), 1);
        QVERIFY(invertSelection(relief));
        QCOMPARE(count(), 130 * 9 - 1);
        selectRectangle(relief, {0, 0}, {64, 8}, SelectionModifier::Normal);
        QVERIFY(shrinkSelection(relief, 3));
        QCOMPARE(count(), 62 * 9); // cells beyond the edge have no effect
    }

    void aFullDeviceIsReported()
    {
        QFile full(QStringLiteral("/dev/full"));
        QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QDataStream stream(&full);
        QVERIFY(!writeRelief(stream, *ramp(3, 2)));
    }
};

QTEST_GUILESS_MAIN(TestRelief)
#include "tst_relief.moc"

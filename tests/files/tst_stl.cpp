#include "files/stlwriter.h"
#include "relief/grid/relief.h"

#include <QDataStream>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <numeric>

using namespace marlowen;

namespace {

/// One 50-byte record, read independently of the writer.
struct Facet
{
    std::array<float, 3> normal;
    std::array<std::array<float, 3>, 3> vertices;
    quint16 attribute;
};

Facet facetAt(const QByteArray &stl, qsizetype offset)
{
    Facet facet{};
    const auto point = [&](qsizetype at) {
        std::array<float, 3> values;
        qFromLittleEndian<float>(stl.constData() + offset + at, 3, values.data());
        return values;
    };
    facet.normal = point(0);
    facet.vertices = {point(12), point(24), point(36)};
    facet.attribute = qFromLittleEndian<quint16>(stl.constData() + offset + 48);
    return facet;
}

struct Grid
{
    int width;
    int height;
    std::vector<float> heights;
    double zFactor = 1.0;
    QByteArray header = {};
};

QByteArray gridStl(const Grid &grid)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    const GridView view{grid.heights.data(), grid.width, grid.height};
    return writeGridStl(stream, {view, grid.zFactor, grid.header}) ? bytes : QByteArray();
}

QByteArray meshStl(const std::vector<StlFacet> &facets, const QByteArray &header)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    return writeMeshStl(stream, facets, header) ? bytes : QByteArray();
}

quint32 countOf(const QByteArray &stl)
{
    return qFromLittleEndian<quint32>(stl.constData() + 80);
}

/// The right-hand unit normal of the vertices in the file.
std::array<double, 3> rightHandNormal(const Facet &f)
{
    std::array<double, 3> a{};
    std::array<double, 3> b{};
    for (size_t i = 0; i < 3; ++i) {
        a[i] = static_cast<double>(f.vertices[1][i]) - static_cast<double>(f.vertices[0][i]);
        b[i] = static_cast<double>(f.vertices[2][i]) - static_cast<double>(f.vertices[0][i]);
    }
    std::array<double, 3> n{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                            a[0] * b[1] - a[1] * b[0]};
    const double length = std::sqrt(std::inner_product(n.begin(), n.end(), n.begin(), 0.0));
    for (double &part : n)
        part /= length;
    return n;
}

} // namespace

class TestStl : public QObject
{
    Q_OBJECT

private slots:
    void countsAndLengths_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QList<float>>("heights");
        QTest::addColumn<int>("facets");
        QTest::newRow("empty") << 3 << QList<float>(9, 0.0F) << 0;
        QTest::newRow("first corner: A alone") << 2 << QList<float>{1, 0, 0, 0} << 1;
        QTest::newRow("second corner: both") << 2 << QList<float>{0, 1, 0, 0} << 2;
        QTest::newRow("last corner: B alone") << 2 << QList<float>{0, 0, 0, 1} << 1;
        QTest::newRow("one row") << 4 << QList<float>{1, 2, 3, 4} << 0;
        QTest::newRow("one column") << 1 << QList<float>{1, 2, 3, 4} << 0;
        QTest::newRow("one cell") << 1 << QList<float>{1} << 0;
        QTest::newRow("full") << 4 << QList<float>(12, 2.0F) << 12;
        // A spike in the middle of 3 x 3 belongs to three triangles above left and three below
        // right.
        QTest::newRow("spike") << 3 << QList<float>{0, 0, 0, 0, 1, 0, 0, 0, 0} << 6;
    }

    void countsAndLengths()
    {
        QFETCH(int, width);
        QFETCH(QList<float>, heights);
        QFETCH(int, facets);
        const int height = static_cast<int>(heights.size()) / width;
        const QByteArray stl = gridStl({width, height, {heights.begin(), heights.end()}});
        QCOMPARE(countOf(stl), static_cast<quint32>(facets));
        QCOMPARE(stl.size(), 84 + 50 * facets);
    }

    void verticesInOrder()
    {
        // 3 x 2 cells; the second square's triangles are facets 2 and 3.
        const QByteArray stl = gridStl({3, 2, {128, 256, 384, 512, 640, 768}, 0.5});
        QCOMPARE(countOf(stl), 4U);
        const float one = 1.0F / 128.0F;
        using Vertices = std::array<std::array<float, 3>, 3>;
        const Facet a = facetAt(stl, 84 + 100);
        QVERIFY((a.vertices == Vertices{{{one, 0, 1.0F}, {2 * one, 0, 1.5F}, {one, one, 2.5F}}}));
        const Facet b = facetAt(stl, 84 + 150);
        QVERIFY(
            (b.vertices == Vertices{{{one, one, 2.5F}, {2 * one, 0, 1.5F}, {2 * one, one, 3.0F}}}));
        QCOMPARE(a.attribute, quint16{0});
    }

    void normalsFollowTheRightHand_data()
    {
        QTest::addColumn<double>("zFactor");
        QTest::newRow("as is") << 1.0;
        QTest::newRow("steep") << 40.0;
        QTest::newRow("mirrored") << -1.0;
        QTest::newRow("flat") << 0.0;
    }

    void normalsFollowTheRightHand()
    {
        QFETCH(double, zFactor);
        Grid grid{37, 23, {}, zFactor};
        for (int i = 0; i < 37 * 23; ++i)
            grid.heights.push_back(i % 11 == 0 ? 0.0F : static_cast<float>((i * 7919) % 500) / 50);
        const QByteArray stl = gridStl(grid);
        QCOMPARE(stl.size(), 84 + 50 * static_cast<qsizetype>(countOf(stl)));
        QVERIFY(countOf(stl) > 1000);
        for (qsizetype at = 84; at < stl.size(); at += 50) {
            const Facet facet = facetAt(stl, at);
            const std::array<double, 3> expected = rightHandNormal(facet);
            QVERIFY(facet.normal[2] > 0.0F);
            for (size_t i = 0; i < 3; ++i)
                QVERIFY(std::abs(expected[i] - static_cast<double>(facet.normal[i])) < 2e-5);
        }
    }

    void levelGroundHasVerticalNormals()
    {
        // No negative zeros: other programs compare and print normals.
        const QByteArray stl = gridStl({3, 2, std::vector<float>(6, 4.0F), 2.0});
        QCOMPARE(countOf(stl), 4U);
        for (qsizetype at = 84; at < stl.size(); at += 50)
            QCOMPARE(stl.mid(at, 12), QByteArray::fromHex("00000000000000000000803f"));
    }

    void rowsLongerThanAWriteBlock()
    {
        // Both a wide and a tall grid cross the writer's block size many times.
        for (const QSize size : {QSize(9000, 3), QSize(3, 9000)}) {
            Grid grid{size.width(), size.height(), {}};
            grid.heights.assign(27000, 1.0F);
            const QByteArray stl = gridStl(grid);
            QCOMPARE(countOf(stl), 2U * 2U * 8999U);
            QCOMPARE(stl.size(), 84 + 50 * static_cast<qsizetype>(countOf(stl)));
            const Facet last = facetAt(stl, stl.size() - 50);
            QCOMPARE(last.vertices[2][0], static_cast<float>(size.width() - 1) / 128);
            QCOMPARE(last.vertices[2][1], static_cast<float>(size.height() - 1) / 128);
        }
    }

    void headers_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("short") << QByteArray("medal");
        QTest::newRow("just fits") << QByteArray(80, 'x');
        QTest::newRow("cut") << QByteArray(100, 'y');
    }

    void headers()
    {
        QFETCH(QByteArray, text);
        QByteArray expected = text.left(80);
        expected.append(80 - expected.size(), '\0');
        QCOMPARE(gridStl({1, 1, {0.0F}, 1.0, text}).left(80), expected);
        QCOMPARE(meshStl({}, text).left(80), expected);
    }

    void meshFacetsBeginAtByte88()
    {
        StlFacet facet{{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9.1}}}, {0, 0, 1}};
        const QByteArray stl = meshStl({facet, facet, facet}, "mesh");
        QCOMPARE(stl.size(), 88 + 150);
        QCOMPARE(qFromLittleEndian<quint64>(stl.constData() + 80), quint64{3});
        const Facet read = facetAt(stl, 88 + 100);
        QVERIFY((read.normal == std::array<float, 3>{0, 0, 1}));
        QVERIFY((read.vertices[2] == std::array<float, 3>{7, 8, 9.1F}));
        QCOMPARE(read.attribute, quint16{0});
    }

    void aFullDeviceStopsBothWriters()
    {
        QFile full(QStringLiteral("/dev/full"));
        QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QDataStream stream(&full);
        const std::vector<float> heights(1000000, 1.0F);
        QVERIFY(!writeGridStl(stream, {{heights.data(), 1000, 1000}, 1.0, {}}));
        stream.resetStatus();
        QVERIFY(!writeMeshStl(stream, std::vector<StlFacet>(10), {}));
    }

    void cancellingLeavesTheOldFile()
    {
        class Cancelled : public Progress
        {
        public:
            bool cancelled() const override { return true; }
        };
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("a.stl"));
        const Relief relief(4, 4);
        QVERIFY(exportGridStl(relief, path));
        QCOMPARE(QFileInfo(path).size(), 84);
        Relief other(4, 4);
        std::fill_n(other.heights().data(), 16, 1.0F);
        Cancelled cancelled;
        QVERIFY(!exportGridStl(other, path, &cancelled));
        QCOMPARE(QFileInfo(path).size(), 84);
        other.zScale = 1e38;
        std::fill_n(other.heights().data(), 16, 1000.0F);
        const Outcome tooHigh = exportGridStl(other, path);
        QVERIFY(!tooHigh && tooHigh.failure().detail.contains(QLatin1String("too large")));
        QCOMPARE(QFileInfo(path).size(), 84);
    }
};

QTEST_APPLESS_MAIN(TestStl)
#include "tst_stl.moc"

#include "files/mesh/convexquad.h"
#include "files/mesh/meshreader.h"
#include "files/mesh/objpiece.h"
#include "files/mesh/polygontessellator.h"
#include "files/mesh/textnumbers.h"
#include "meshtext.h"

#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace marlowen;

namespace {

/// Twice the signed area of the triangles, seen from above.
double doubleArea(const TriangleMesh &mesh)
{
    double sum = 0.0;
    for (const MeshTriangle &t : mesh.triangles) {
        const MeshPoint &a = mesh.corner(t, 0);
        const MeshPoint &b = mesh.corner(t, 1);
        const MeshPoint &c = mesh.corner(t, 2);
        sum += (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
    }
    return sum;
}

} // namespace

class TestMeshes : public QObject
{
    Q_OBJECT

private slots:
    void objLines_data();
    void objLines();
    void objProblems_data();
    void objProblems();
    void relativeIndices();
    void polygonsKeepTheirArea_data();
    void polygonsKeepTheirArea();
    void quadsAreCutAsTheTessellatorCutsThem();
    void linesAcrossBlocks();
    void blocksEndWithTheirLastLine();
    void stlForms_data();
    void stlForms();
    void stlProblems_data();
    void stlProblems();
    void cornersAreWeldedByValue();
};

void TestMeshes::objLines_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QList<double>>("third"); // corner of the first triangle
    const QByteArray two("v 0 0 0\nv 9 0 0\n");
    const auto row = [&](const char *name, const QByteArray &text, const QList<double> &third) {
        QTest::newRow(name) << text << third;
    };
    row("weight", two + "v 2 4 6 2\nf 1 2 3\n", {1, 2, 3});
    row("colours are no weight", two + "v 2 4 6 2 1 1\nf 1 2 3", {2, 4, 6});
    row("a fifth number switches the weight off", two + "v 2 4 6 2 1\nf 1 2 3", {2, 4, 6});
    row("texture and normal indices", two + "v 2 4 6\nf 1/2/3 2/3/4 3/4/5\n", {2, 4, 6});
    row("carriage returns", "v 0 0 0\r\nv 9 0 0\r\nv 2 4 6\r\nf 1 2 3\r\n", {2, 4, 6});
    row("carriage returns alone", "v 0 0 0\rv 9 0 0\rv 2 4 6\rf 1 2 3", {2, 4, 6});
    row("indices of many digits", two + "v 2 4 6\nf 00000001 000000002 00000000003\n", {2, 4, 6});
    row("other lines", two + "#v 5\nvn 1 1 1\nvt 3 3\ng v\nusemtl f\nv 2 4 6\nf 1 2 3\n",
        {2, 4, 6});
    row("tabs and indents", two + " \tv\t2  4 6 \n\tf 1\t2 3 \n", {2, 4, 6});
    row("number forms", two + "v +2.5e0 -.5 1E-2\nf +1 2 3\n", {2.5, -0.5, 0.01});
    row("seventeen digits",
        two + "v 0.10000000000000001 1.7976931348623157e308 4.9e-324\nf 1 2 3\n",
        {0.1, 1.7976931348623157e308, 4.9e-324});
    row("face before its vertices", "f 1 2 3\n" + two + "v 2 4 6\n", {2, 4, 6});
    row("byte order mark", "\xEF\xBB\xBF" + two + "v 2 4 6\nf 1 2 3\n", {2, 4, 6});
    row("zero is the next vertex", two + "f 1 2 0\nv 2 4 6\n", {2, 4, 6});
}

void TestMeshes::objLines()
{
    QFETCH(QByteArray, text);
    QFETCH(QList<double>, third);
    const ReadMesh read = objOf(text);
    QCOMPARE(read.problems.first(), QString());
    QCOMPARE(read.mesh.triangles.size(), size_t{1});
    const MeshPoint &point = read.mesh.corner(read.mesh.triangles[0], 2);
    for (int i = 0; i < 3; ++i)
        QVERIFY(point[static_cast<size_t>(i)] == third[i]);
}

void TestMeshes::objProblems_data()
{
    QTest::addColumn<QByteArray>("lines"); // behind the four corners of a square
    QTest::addColumn<int>("problems");
    QTest::addColumn<QString>("first");
    QTest::addColumn<int>("triangles");
    const auto row = [](const char *name, const QByteArray &lines, int problems,
                        const QString &first, int triangles) {
        QTest::newRow(name) << lines << problems << first << triangles;
    };
    const QString badDouble = QStringLiteral("ObjFileReader: bad double (%1)");
    const QString badId = QStringLiteral("ObjFileReader: bad vertex id (%1)");
    const QString few = QStringLiteral("ObjFileReader: face with less than 3 vertices");
    const QString infinite =
        QStringLiteral("ObjFileReader: face with a coordinate that is not finite");
    row("bad number", "v 1 x 1\nf 1 2 5", 1, badDouble.arg("x"), 1);
    row("missing numbers", "v 1\nf 1 2 3", 2, badDouble.arg(""), 1);
    row("bad weight counts as 1", "v 1 2 3 w\nf 1 2 5", 1, badDouble.arg("w"), 1);
    row("bad index ends the line", "f 1 2 3 a 4\nf 1 b 2", 3, badId.arg("a"), 1);
    row("too few", "f 1 2\nf 1 2 3", 1, few, 1);
    row("outside the list", "f 1 2 99999999999\nf 1 2 3", 1, badId.arg("99999999999"), 1);
    row("one past the last", "f 1 2 -1\nf 1 2 3", 1, badId.arg("-1"), 1);
    row("not finite", "v nan 1 1\nv 1e999 1 1\nv 1 1 1 0\nf 1 2 5\nf 1 2 6\nf 1 2 3 7\nf 1 2 3", 3,
        infinite, 1);
    row("lines are no problem", "v 2 0 0\nf 1 2 5\nf 1 1 2\nf 1 2 5 2\nf 1 2 3", 0, {}, 1);
}

void TestMeshes::objProblems()
{
    QFETCH(QByteArray, lines);
    const ReadMesh read = objOf(square + lines + "\n");
    QTEST(static_cast<int>(read.problems.count()), "problems");
    QTEST(read.problems.first(), "first");
    QTEST(static_cast<int>(read.mesh.triangles.size()), "triangles");
}

void TestMeshes::relativeIndices()
{
    using Indices = ObjFileReader::RelativeIndices;
    const QByteArray text = square + "f -4 -3 -2\nv 9 9 9\nf 0 1 2\n";
    const ReadMesh literal = objOf(text);
    QCOMPARE(literal.problems.count(), 2);
    QCOMPARE(literal.mesh.triangles.size(), size_t{0});
    const ReadMesh usual = objOf(text, Indices::AsOtherPrograms);
    QCOMPARE(usual.problems.count(), 1);
    QCOMPARE(usual.mesh.triangles.size(), size_t{1});
    QVERIFY(usual.mesh.triangles[0] == (MeshTriangle{0, 1, 2}));
}

void TestMeshes::polygonsKeepTheirArea_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("triangles");
    QTest::addColumn<double>("area");
    QTest::newRow("square") << square + "f 1 2 3 4\n" << 2 << 32.0;
    QTest::newRow("square from below") << square + "f 4 3 2 1\n" << 2 << 32.0;
    QTest::newRow("arrow") << QByteArray("v 0 0 0\nv 4 4 0\nv 0 2 0\nv -4 4 0\nf 1 2 3 4\n") << 2
                           << 16.0;
    QTest::newRow("concave pentagon") << square + "v 2 1 0\nf 1 2 3 5 4\n" << 3 << 20.0;
    QTest::newRow("bow tie") << square + "f 1 3 2 4\n" << 2 << 16.0;
    QByteArray wheel;
    QByteArray face("f");
    for (int i = 0; i < 100000; ++i) {
        const double angle = 2e-5 * M_PI * i;
        wheel += QStringLiteral("v %1 %2 0\n").arg(std::cos(angle)).arg(std::sin(angle)).toLatin1();
        face += ' ' + QByteArray::number(i + 1);
    }
    QTest::newRow("100000 corners") << wheel + face << -1 << 2.0 * M_PI;
}

void TestMeshes::polygonsKeepTheirArea()
{
    QFETCH(QByteArray, text);
    QFETCH(int, triangles);
    QFETCH(double, area);
    const ReadMesh read = objOf(text);
    QCOMPARE(read.problems.first(), QString());
    if (triangles >= 0)
        QCOMPARE(static_cast<int>(read.mesh.triangles.size()), triangles);
    QVERIFY(std::abs(std::abs(doubleArea(read.mesh)) - area) < 1e-5);
}

void TestMeshes::quadsAreCutAsTheTessellatorCutsThem()
{
    QRandomGenerator random(7);
    const auto sorted = [](std::vector<MeshTriangle> triangles) {
        for (MeshTriangle &t : triangles)
            std::rotate(t.begin(), std::min_element(t.begin(), t.end()), t.end());
        std::sort(triangles.begin(), triangles.end());
        return triangles;
    };
    int shortCuts = 0;
    Progress silent;
    for (int n = 0; n < 20000; ++n) {
        const bool whole = n % 2 == 0; // ties in the sweep's order
        std::array<MeshPoint, 4> corners;
        for (size_t i = 0; i < 4; ++i) {
            for (double &value : corners[i])
                value = whole ? random.bounded(5) : random.generateDouble();
        }
        const std::optional<QuadCut> cut = cutConvexQuad(corners);
        if (!cut)
            continue;
        ++shortCuts;
        TriangleMesh mesh;
        MeshProblems problems;
        mesh.positions.assign(corners.begin(), corners.end());
        PolygonTessellator(mesh, problems).tessellate(std::array<quint32, 4>{0, 1, 2, 3}, silent);
        std::vector<MeshTriangle> expected;
        for (const auto &[a, b, c] : *cut)
            expected.push_back({a, b, c});
        QVERIFY(sorted(expected) == sorted({mesh.triangles.begin(), mesh.triangles.end()}));
    }
    QVERIFY(shortCuts > 1000);
}

void TestMeshes::linesAcrossBlocks()
{
    // Blocks end within lines of many lengths, and one line is longer than a block.
    QByteArray text("v 0 0 0\nv 1 0 0\n#" + QByteArray(1500000, 'x') + "\n");
    constexpr int count = 60000;
    for (int i = 0; i < count; ++i)
        text += "v 0.25 " + QByteArray::number(i + 1) + " " + QByteArray::number(i * 0.5) +
                "\nf 1 2 " + QByteArray::number(i + 3) + "\n";
    const ReadMesh read = objOf(text);
    QCOMPARE(read.problems.count(), 0);
    QCOMPARE(read.mesh.triangles.size(), size_t{count});
    for (size_t i = 0; i < count; ++i)
        QVERIFY(read.mesh.corner(read.mesh.triangles[i], 2) ==
                (MeshPoint{0.25, static_cast<double>(i) + 1.0, static_cast<double>(i) * 0.5}));
}

void TestMeshes::blocksEndWithTheirLastLine()
{
    // What lies behind a block looks like more of it.
    const std::string text =
        "f 1 2 3\nf 2 3 4\nv 1 2 3\nv 4 5 6\n" + std::string(textSpareBytes, '\n');
    for (const size_t lines : {1U, 2U, 3U, 4U}) {
        ObjPiece piece;
        readObjLines(std::string_view(text).substr(0, 8 * lines), piece);
        QCOMPARE(piece.triangles.size(), std::min(lines, size_t{2}));
        QCOMPARE(piece.positions.size(), lines - piece.triangles.size());
    }
}

void TestMeshes::stlForms_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto text = [](const QString &facets) { return facets.toLatin1(); };
    const QString both = textFacet() + textFacet(QStringLiteral("1 1 -2.5e-1"));
    QTest::newRow("32-bit count") << binaryStl(twoFacets, 2);
    QTest::newRow("64-bit count") << binaryStl(twoFacets, 2, true);
    QTest::newRow("binary that begins with solid") << binaryStl(twoFacets, 2, false, "solid a");
    QTest::newRow("text") << text("solid a\n" + both + "endsolid a\n");
    QTest::newRow("name of keywords")
        << text("solid facet vertex 1\n" + both + "endsolid facet x\n");
    QTest::newRow("capitals") << text("solid a\n" + both + "endsolid a\n").toUpper();
    QTest::newRow("two solids") << text("solid a\n" + textFacet() + "endsolid a\nsolid\n" +
                                        textFacet(QStringLiteral("1 1 1")) + "endsolid\n");
    QTest::newRow("one line") << text("solid a\n" + both + "endsolid a").replace('\n', ' ');
    QTest::newRow("line ends within facets")
        << "solid a\n" + text(both).replace(' ', "\r\n\t") + "endsolid a";
}

void TestMeshes::stlForms()
{
    QFETCH(QByteArray, bytes);
    const ReadMesh read = stlOf(bytes);
    QCOMPARE(read.problems.first(), QString());
    QCOMPARE(read.mesh.triangles.size(), size_t{2});
    QCOMPARE(read.mesh.positions.size(), size_t{4});
    QVERIFY(read.mesh.corner(read.mesh.triangles[0], 1) == (MeshPoint{1, 0, 0}));
    QVERIFY(read.mesh.corner(read.mesh.triangles[0], 2) == (MeshPoint{0, 1, 0}));
}

void TestMeshes::stlProblems_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("triangles");
    QTest::addColumn<int>("problems");
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const FacetCorners good = twoFacets[0];
    const auto text = [](const QString &facets) { return ("solid a\n" + facets).toLatin1(); };
    QTest::newRow("not finite and collapsed")
        << binaryStl({good, {0, 0, infinity, 1, 0, 0, 0, 1, 0}, {0, 0, 0, 1, 0, 0, -0.0F, 0, 0}}, 3)
        << 1 << 2;
    QTest::newRow("cut short") << binaryStl(twoFacets, 2).chopped(1) << 1 << 1;
    QTest::newRow("promises too much") << binaryStl(twoFacets, 4000000000) << 2 << 1;
    QTest::newRow("promises too much in 64 bits") << binaryStl({good}, ~0ULL, true) << 1 << 1;
    QTest::newRow("more than its count") << binaryStl(twoFacets, 1) << 1 << 1;
    QTest::newRow("count never filled in") << binaryStl(twoFacets, 0) << 2 << 1;
    QTest::newRow("text without its end") << text(textFacet()) << 1 << 1;
    QTest::newRow("text cut within a facet") << text(textFacet() + textFacet().left(70)) << 1 << 1;
    QTest::newRow("bad number") << text(textFacet("0 1 x") + textFacet() + "endsolid") << 1 << 1;
    QTest::newRow("too large for a float")
        << text(textFacet("0 1 1e99") + textFacet() + "endsolid") << 1 << 1;
    QTest::newRow("four numbers") << text(textFacet("0 1 0 0") + textFacet() + "endsolid") << 1
                                  << 1;
    QTest::newRow("words between facets")
        << text("what is this " + textFacet() + "endsolid") << 1 << 1;
}

void TestMeshes::stlProblems()
{
    QFETCH(QByteArray, bytes);
    const ReadMesh read = stlOf(bytes);
    QTEST(static_cast<int>(read.mesh.triangles.size()), "triangles");
    QTEST(static_cast<int>(read.problems.count()), "problems");
}

void TestMeshes::cornersAreWeldedByValue()
{
    // A sheet with a corner at every grid point, its facets in any order.
    constexpr int side = 120;
    std::vector<FacetCorners> facets;
    const auto z = [](int c, int r) { return static_cast<float>(std::sin(c * 0.3) * r); };
    const auto x = [](int c, int r) { return c == 0 && r % 2 == 0 ? -0.0F : float(c); };
    for (int r = 0; r < side; ++r) {
        for (int c = 0; c < side; ++c)
            facets.push_back({x(c, r), float(r), z(c, r), float(c + 1), float(r), z(c + 1, r),
                              x(c, r), float(r + 1), z(c, r + 1)});
    }
    std::shuffle(facets.begin(), facets.end(), QRandomGenerator(3));
    const ReadMesh read = stlOf(binaryStl(facets, facets.size()));
    QCOMPARE(read.mesh.positions.size(), size_t{(side + 1) * (side + 1) - 1});
    QCOMPARE(read.mesh.triangles.size(), facets.size());
    for (size_t i = 0; i < facets.size(); ++i) {
        for (size_t k = 0; k < 9; ++k)
            QVERIFY(read.mesh.corner(read.mesh.triangles[i], k / 3)[k % 3] ==
                    static_cast<double>(facets[i][k]));
    }
}

QTEST_GUILESS_MAIN(TestMeshes)
#include "tst_meshes.moc"

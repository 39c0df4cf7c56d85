#include "relief/grid/gridlayer.h"
#include "render/overlays/selectionoutline.h"

#include <QRandomGenerator>
#include <QSet>
#include <QTest>

using namespace marlowen;

namespace {

/// A layer from text rows, '#' selected.
struct Picture
{
    QSize size;
    GridLayer layer;

    explicit Picture(const QStringList &rows)
        : size(int(rows.front().size()), int(rows.size()))
        , layer(qsizetype(size.width()) * size.height())
    {
        for (int row = 0; row < size.height(); ++row)
            for (int column = 0; column < size.width(); ++column)
                if (rows[row][column] == '#')
                    set(column, row, 1.0F);
    }
    Picture(QSize grid, QRandomGenerator &random, int percent)
        : size(grid)
        , layer(qsizetype(grid.width()) * grid.height())
    {
        for (int row = 0; row < size.height(); ++row)
            for (int column = 0; column < size.width(); ++column)
                if (random.bounded(100) < percent)
                    set(column, row, 0.25F);
    }

    void set(int column, int row, float value)
    {
        layer.data()[qsizetype(row) * size.width() + column] = value;
    }
    QRect rect() const { return {QPoint(0, 0), size}; }
    bool selected(int column, int row, const QRect &area) const
    {
        return area.contains(column, row) &&
               layer.constData()[qsizetype(row) * size.width() + column] != 0.0F;
    }
    SelectionOutline outline() const { return outlineSelection(layer, size, rect()); }
};

struct Edge
{
    QPoint from;
    QPoint to;
    bool operator==(const Edge &) const = default;
};

size_t qHash(const Edge &edge, size_t seed = 0)
{
    return qHashMulti(seed, edge.from.x(), edge.from.y(), edge.to.x(), edge.to.y());
}

/// The unit edges of the loops, with direction.
QList<Edge> edgesOf(const SelectionOutline &outline)
{
    QList<Edge> edges;
    for (size_t loop = 0; loop < outline.firsts.size(); ++loop) {
        const int first = outline.firsts[loop];
        const int count = outline.counts[loop];
        for (int i = 0; i < count; ++i) {
            QPoint at = outline.corners[size_t(first + i)];
            const QPoint end = outline.corners[size_t(first + (i + 1) % count)];
            const QPoint way = end - at;
            const QPoint unit(qBound(-1, way.x(), 1), qBound(-1, way.y(), 1));
            for (; at != end; at += unit)
                edges.append({at, at + unit});
        }
    }
    return edges;
}

/// The same edges straight from the definition.
QSet<Edge> expectedEdges(const Picture &picture, const QRect &area)
{
    QSet<Edge> edges;
    for (int r = area.top(); r <= area.bottom(); ++r)
        for (int c = area.left(); c <= area.right(); ++c) {
            if (!picture.selected(c, r, area))
                continue;
            const QPoint a(c, r), b(c + 1, r), d(c, r + 1), e(c + 1, r + 1);
            if (!picture.selected(c, r - 1, area))
                edges.insert({a, b});
            if (!picture.selected(c + 1, r, area))
                edges.insert({b, e});
            if (!picture.selected(c, r + 1, area))
                edges.insert({e, d});
            if (!picture.selected(c - 1, r, area))
                edges.insert({d, a});
        }
    return edges;
}

bool cornersAreTurns(const SelectionOutline &outline)
{
    for (size_t loop = 0; loop < outline.firsts.size(); ++loop) {
        const QPoint *corners = outline.corners.data() + outline.firsts[loop];
        const int count = outline.counts[loop];
        for (int i = 0; i < count; ++i) {
            const QPoint in = corners[i] - corners[(i + count - 1) % count];
            const QPoint out = corners[(i + 1) % count] - corners[i];
            const bool horizontalIn = in.y() == 0 && in.x() != 0;
            const bool horizontalOut = out.y() == 0 && out.x() != 0;
            if (horizontalIn == horizontalOut || (in.x() != 0 && in.y() != 0))
                return false;
        }
    }
    return true;
}

} // namespace

class TestSelectionOutline : public QObject
{
    Q_OBJECT

private slots:
    void holeGetsItsOwnLoop();
    void diagonalCellsAreSeparate();
    void randomSelections_data();
    void randomSelections();
    void areaCutsTheSelection();
    void blocksOfSteps();
};

void TestSelectionOutline::holeGetsItsOwnLoop()
{
    const Picture picture({"####", "#..#", "####"});
    const SelectionOutline outline = picture.outline();
    QCOMPARE(outline.counts, (std::vector<int>{4, 4}));
    QCOMPARE(edgesOf(outline).size(), 14 + 6);
}

void TestSelectionOutline::diagonalCellsAreSeparate()
{
    QCOMPARE(Picture({"#.", ".#"}).outline().counts, (std::vector<int>{4, 4}));
    QCOMPARE(Picture({".#", "#."}).outline().counts, (std::vector<int>{4, 4}));
    // Two holes that touch diagonally: the cells around them hang together, one loop does for both.
    const Picture holes({"####", "#.##", "##.#", "####"});
    QCOMPARE(holes.outline().counts, (std::vector<int>{4, 8}));
}

void TestSelectionOutline::randomSelections_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("percent");
    for (const QSize size : {QSize(1, 1), QSize(1, 40), QSize(40, 1), QSize(6, 7), QSize(7, 6),
                             QSize(8, 8), QSize(33, 29), QSize(64, 20)})
        for (int percent : {10, 50, 90, 100})
            QTest::addRow("%dx%d %d%%", size.width(), size.height(), percent) << size << percent;
}

void TestSelectionOutline::randomSelections()
{
    QFETCH(QSize, size);
    QFETCH(int, percent);
    QRandomGenerator random(17);
    for (int round = 0; round < 20; ++round) {
        const Picture picture(size, random, percent);
        const SelectionOutline outline = picture.outline();
        const QList<Edge> edges = edgesOf(outline);
        const QSet<Edge> once(edges.begin(), edges.end());
        QCOMPARE(qsizetype(once.size()), edges.size());
        QCOMPARE(once, expectedEdges(picture, picture.rect()));
        QVERIFY(cornersAreTurns(outline));
    }
}

void TestSelectionOutline::areaCutsTheSelection()
{
    QRandomGenerator random(5);
    const Picture picture(QSize(30, 20), random, 60);
    for (const QRect area : {QRect(3, 4, 9, 11), QRect(0, 0, 1, 20), QRect(29, 19, 1, 1)}) {
        const QList<Edge> edges = edgesOf(outlineSelection(picture.layer, picture.size, area));
        QCOMPARE(QSet<Edge>(edges.begin(), edges.end()), expectedEdges(picture, area));
    }
    // There is no outline beyond the grid.
    const auto wide = outlineSelection(picture.layer, picture.size, QRect(-50, -50, 500, 500));
    QCOMPARE(wide.corners, picture.outline().corners);
    QVERIFY(outlineSelection(picture.layer, picture.size, QRect(40, 40, 5, 5)).isEmpty());
}

void TestSelectionOutline::blocksOfSteps()
{
    // One cell in the block of columns 3..5; the last block is cut off by the edge of the grid.
    Picture picture({"........", "........", "........", "...#...#"});
    const SelectionOutline outline =
        outlineSelection(picture.layer, picture.size, picture.rect(), 3);
    QCOMPARE(outline.corners, (std::vector<QPoint>{{3, 3}, {8, 3}, {8, 4}, {3, 4}}));
}

QTEST_GUILESS_MAIN(TestSelectionOutline)
#include "tst_selectionoutline.moc"

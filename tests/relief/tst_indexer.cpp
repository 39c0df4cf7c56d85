#include "relief/grid/indexer.h"

#include <QtTest>

#include <array>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace marlowen;

/// Runs `call` in a child process; true when it aborts and its last words are "Bad Neighbor!" and
/// the function.
template <typename Call>
static bool diesOfBadNeighbor(Call call, const QByteArray &function)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        const rlimit none{0, 0};
        setrlimit(RLIMIT_CORE, &none); // writing a core dump takes seconds
        qInstallMessageHandler(nullptr);
        qSetMessagePattern(QStringLiteral("%{message} %{file} %{function}"));
        call();
        _exit(0);
    }
    close(ends[1]);
    QByteArray words;
    std::array<char, 256> chunk;
    for (ssize_t got; (got = read(ends[0], chunk.data(), chunk.size())) > 0;)
        words.append(chunk.data(), static_cast<qsizetype>(got));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT &&
           words.contains("Bad Neighbor! indexer " + function);
}

class TestIndexer : public QObject
{
    Q_OBJECT

private slots:
    void neighbours_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QList<int>>("expected"); // left, right, above, below, then the diagonals
        // 3 columns x 2 rows: 0 1 2 / 3 4 5
        QTest::newRow("corner above left") << 0 << QList<int>{-1, 1, -1, 3, -1, -1, -1, 4};
        QTest::newRow("middle above") << 1 << QList<int>{0, 2, -1, 4, -1, -1, 3, 5};
        QTest::newRow("corner below right") << 5 << QList<int>{4, -1, 2, -1, 1, -1, -1, -1};
        QTest::newRow("middle below") << 4 << QList<int>{3, 5, 1, -1, 0, 2, -1, -1};
        QTest::newRow("past the end") << 6 << QList<int>(8, -1);
        QTest::newRow("before the start") << -1 << QList<int>(8, -1);
    }

    void neighbours()
    {
        QFETCH(int, index);
        QFETCH(QList<int>, expected);
        const Indexer indexer(3, 2);
        for (int n = 0; n < 8; ++n)
            QCOMPARE(indexer.neighborOf(index, static_cast<Indexer::Neighbors>(n)), expected[n]);
        QCOMPARE(indexer.left(index), expected[0]);
        QCOMPARE(indexer.right(index), expected[1]);
        QCOMPARE(indexer.up(index), expected[2]);
        QCOMPARE(indexer.down(index), expected[3]);
    }

    void theInverseStepReturnsToTheStart()
    {
        const Indexer indexer(3, 3);
        for (int n = 0; n < 8; ++n) {
            const auto direction = static_cast<Indexer::Neighbors>(n);
            const auto back = indexer.oppositeNeighborOf(direction);
            QCOMPARE(indexer.oppositeNeighborOf(back), direction);
            QCOMPARE(indexer.neighborOf(indexer.neighborOf(4, direction), back), 4);
        }
    }

    void relationsAndOffsets()
    {
        const Indexer indexer(3, 3);
        QVERIFY(indexer.isNeighbor(4, 8));
        QVERIFY(!indexer.isNeighbor(2, 3)); // adjacent indices, opposite sides of the grid
        QVERIFY(!indexer.isNeighbor(4, 4));
        QVERIFY(indexer.isHorizontalNeighbor(4, 3));
        QVERIFY(!indexer.isHorizontalNeighbor(4, 1));
        QVERIFY(indexer.isVerticalNeighbor(4, 1));
        QVERIFY(!indexer.isVerticalNeighbor(4, 0));
        QVERIFY(!indexer.isHorizontalNeighbor(0, -1));
        QCOMPARE(indexer.offset(4, 6), QPointF(-1.0, 1.0));
        QCOMPARE(indexer.offset(4, 2), QPointF(1.0, -1.0));
        QCOMPARE(indexer.offset(0, 8), QPointF(0.0, 0.0));
    }

    void aDirectionOutOfTheTableIsFatal()
    {
        const Indexer indexer(3, 3);
        const auto wrong = static_cast<Indexer::Neighbors>(8);
        QVERIFY(diesOfBadNeighbor([&] { indexer.neighborOf(4, wrong); }, "Indexer::neighborOf"));
        QVERIFY(diesOfBadNeighbor([&] { indexer.oppositeNeighborOf(wrong); },
                                  "Indexer::oppositeNeighborOf"));
    }
};

QTEST_GUILESS_MAIN(TestIndexer)
#include "tst_indexer.moc"

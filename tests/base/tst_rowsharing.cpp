#include "base/rowsharing.h"

#include <QtTest>

#include <stdexcept>
#include <vector>

using namespace marlowen;

class TestRowSharing : public QObject
{
    Q_OBJECT

private slots:
    void everyRowIsWorkedOnOnce()
    {
        for (const bool alone : {false, true}) {
            std::vector<int> counts(1003);
            QVERIFY(shareRows({1003, 7, alone}, [&](int first, int end) {
                // Within the work the other threads may all be busy.
                shareRows({end - first, 1}, [&](int from, int to) {
                    for (int row = from; row < to; ++row)
                        ++counts[static_cast<size_t>(first + row)];
                });
            }));
            QCOMPARE(counts, std::vector<int>(1003, 1));
        }
        QVERIFY(shareRows({0, 7}, [](int, int) { QFAIL("there is no row"); }));
    }

    void stopsWhenItIsNotToGoOn()
    {
        int rows = 0;
        QVERIFY(!shareRows(
            {100, 1, true}, [&](int first, int end) { rows += end - first; },
            [](int done) { return done < 3; }));
        QCOMPARE(rows, 3);
    }

    void failuresReachTheCaller()
    {
        const auto fail = [](int first, int) {
            if (first == 40)
                throw std::runtime_error("row 40");
        };
        QVERIFY_EXCEPTION_THROWN(shareRows({100, 1}, fail), std::runtime_error);
    }
};

QTEST_APPLESS_MAIN(TestRowSharing)
#include "tst_rowsharing.moc"

#include "base/datafolder.h"
#include "personathand.h"
#include "relief/grid/relief.h"
#include "theme.h"
#include "ui/library/patternmodel.h"
#include "ui/library/patternpanel.h"
#include "ui/library/patternstore.h"

#include <QtTest>
#include <QtWidgets>

#include <unistd.h>

using namespace marlowen;

namespace {

std::unique_ptr<Relief> ramp(int width, int height)
{
    auto relief = std::make_unique<Relief>(width, height);
    for (int i = 0; i < relief->cells(); ++i)
        relief->heights().data()[i] = 1.0F + static_cast<float>(i % width);
    return relief;
}

QString add(const Relief &relief, const QString &name)
{
    Progress quiet;
    const Result<QString> added = addReliefPattern(relief, {name, patternFolder()}, quiet);
    return added ? added.value() : added.failure().sentence;
}

} // namespace

class TestPatterns : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { wearTheme(false); }
    void init() { QDir(patternFolder()).removeRecursively(); }

    void builtInPatternsAreLargeEnough()
    {
        const QList<PatternEntry> entries = patternEntries(builtInPatternFolder());
        QVERIFY(entries.size() >= 12);
        for (const PatternEntry &entry : entries) {
            const Result<std::unique_ptr<Relief>> opened = openPattern(entry.path);
            QVERIFY2(opened, qPrintable(entry.path));
            QVERIFY(entry.builtIn && opened.value()->width() >= 256);
        }
    }

    void selectionAloneIsAdded()
    {
        const auto relief = ramp(20, 10);
        relief->selectionActive = true;
        relief->selectionLayer().data()[relief->index(5, 3)] = 1.0F;
        relief->selectionLayer().data()[relief->index(8, 4)] = 1.0F;
        const auto opened = openPattern(add(*relief, QStringLiteral("part")));
        QVERIFY(opened);
        QCOMPARE(opened.value()->rect(), QRect(0, 0, 4, 2));
        const float *heights = opened.value()->heights().constData();
        QCOMPARE(QList<float>(heights, heights + 8), (QList<float>{6, 0, 0, 0, 0, 0, 0, 9}));
        QVERIFY(add(*relief, QStringLiteral("part")).endsWith(QStringLiteral("part 2.ptr")));
        QStringList names;
        for (const PatternEntry &entry : patternEntries(patternFolder()))
            names << entry.name;
        QVERIFY(names.indexOf(QStringLiteral("part")) < names.indexOf(QStringLiteral("part 2")));
        relief->selectionLayer().clear();
        QVERIFY(add(*relief, QStringLiteral("none")).contains(QStringLiteral("empty cells")));
        QVERIFY(add(*ramp(2, 2), QStringLiteral("a/b")).contains(QStringLiteral("name of a file")));
    }

    void panelFollowsTheFolder()
    {
        PatternPanel panel;
        panel.show();
        auto *list = panel.findChild<QListView *>(QStringLiteral("patterns"));
        panel.findChild<QLineEdit *>(QStringLiteral("patternSearch"))->setText("dro");
        QCOMPARE(list->model()->rowCount(), 0);
        const QString path = add(*ramp(30, 20), QStringLiteral("Drop"));
        QTRY_COMPARE(list->model()->rowCount(), 1); // another program wrote it
        panel.setReasons({}, {});
        auto *place = panel.findChild<QToolButton *>(QStringLiteral("placePattern"));
        QVERIFY(!place->isEnabled()); // nothing is chosen
        list->setCurrentIndex(list->model()->index(0, 0));
        QVERIFY(place->isEnabled());
        PersonAtHand person;
        QVERIFY(!list->model()->setData(list->model()->index(0, 0), QStringLiteral("Drone")));
        QTRY_VERIFY(QFile::exists(patternFolder() + QStringLiteral("/Drone.ptr")));
        QFile damaged(patternFolder() + QStringLiteral("/Dross.ptr"));
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("QEVP\0\1", 6) == 6);
        damaged.close();
        panel.addFiles({damaged.fileName()});
        QTRY_VERIFY(person.sentences.join(u' ').contains(QStringLiteral("not a pattern")));
        QVERIFY(QDir(patternFolder()).removeRecursively());
        panel.reload();
        panel.findChild<QLineEdit *>(QStringLiteral("patternSearch"))->setText("Dro");
        QCOMPARE(list->model()->rowCount(), 0);
    }

    /// Only visible thumbnails are read.
    void onlyVisibleThumbnailsAreRead()
    {
        const QString first = add(*ramp(64, 64), QStringLiteral("Z0000"));
        for (int i = 1; i < 2000; ++i) {
            const QString name = QStringLiteral("/Z%1.ptr").arg(i, 4, 10, QLatin1Char('0'));
            QCOMPARE(::link(qPrintable(first), qPrintable(patternFolder() + name)), 0);
        }
        PatternPanel panel;
        panel.resize(240, 500);
        auto *list = panel.findChild<QListView *>(QStringLiteral("patterns"));
        QStringList read;
        connect(list->model(), &QAbstractItemModel::dataChanged, &panel,
                [&](const QModelIndex &index) { read << index.data().toString(); });
        panel.findChild<QLineEdit *>(QStringLiteral("patternSearch"))->setText("Z");
        QCOMPARE(list->model()->rowCount(), 2000);
        panel.show();
        QTRY_VERIFY(read.contains(QStringLiteral("Z0001")));
        list->scrollToBottom();
        QTRY_VERIFY(read.contains(QStringLiteral("Z1999")));
        QVERIFY(read.size() < 150);
    }
};

QTEST_MAIN(TestPatterns)
#include "tst_patterns.moc"

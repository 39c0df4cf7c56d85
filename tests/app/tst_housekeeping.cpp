#include "app/housekeeping.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace marlowen;

namespace {

constexpr qint64 hour = 60 * 60;

void makeEntry(const QDir &folder, const QString &name)
{
    if (name.endsWith('/')) {
        folder.mkpath(name);
        return;
    }
    folder.mkpath(QFileInfo(name).path());
    QFile file(folder.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
}

/// Pretends that everything in the folder is `hours` old by moving the clock instead of the files.
void tidyFolder(const QDir &folder, qint64 hours)
{
    const QDateTime now = QDateTime::currentDateTime().addSecs(hours * hour);
    scrubOldLogs(folder.path(), now);
    cleanTemporaryFolders(folder.path(), now);
}

QStringList listing(const QDir &folder)
{
    return folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
}

} // namespace

class TestHousekeeping : public QObject
{
    Q_OBJECT

private slots:
    void oldEntriesAreDeleted_data()
    {
        QTest::addColumn<QStringList>("made");
        QTest::addColumn<int>("hours");
        QTest::addColumn<QStringList>("left");

        const QStringList logs{"a.log", "marlowen3_1f.log", "qdebug.txt", "b.log.txt"};
        QTest::newRow("logs of 23 hours") << logs << 23 << logs;
        QTest::newRow("logs of 25 hours") << logs << 25 << QStringList{"b.log.txt", "qdebug.txt"};
        QTest::newRow("a folder called log") << QStringList{"x.log/"} << 25 << QStringList{"x.log"};

        const QStringList meshes{"tmp_1/stltmp1", "tmp_1/stltmp2.stl"};
        QTest::newRow("young mesh folder") << meshes << 23 << QStringList{"tmp_1"};
        QTest::newRow("old mesh folder") << meshes << 25 << QStringList{};
        QTest::newRow("empty mesh folder") << QStringList{"tmp_2/"} << 25 << QStringList{};
        QTest::newRow("file called tmp") << QStringList{"tmp_3"} << 25 << QStringList{"tmp_3"};
        QTest::newRow("other folder")
            << QStringList{"tmp/stltmp", "download/"} << 25 << QStringList{"download", "tmp"};
    }

    void oldEntriesAreDeleted()
    {
        QFETCH(QStringList, made);
        QFETCH(int, hours);
        QFETCH(QStringList, left);
        const QTemporaryDir home;
        const QDir folder(home.path());
        for (const QString &name : made)
            makeEntry(folder, name);
        tidyFolder(folder, hours);
        left.sort();
        QCOMPARE(listing(folder), left);
    }

    void folderWithForeignFilesLosesOnlyItsMeshes()
    {
        const QTemporaryDir home;
        const QDir folder(home.path());
        for (const QString name : {"tmp_1/stltmp1", "tmp_1/stltmp2", "tmp_1/notes.txt"})
            makeEntry(folder, name);
        tidyFolder(folder, 25);
        QCOMPARE(listing(QDir(folder.filePath("tmp_1"))), QStringList{"notes.txt"});
    }

    void linkedFolderIsNotEntered()
    {
        const QTemporaryDir home;
        const QTemporaryDir elsewhere;
        makeEntry(QDir(elsewhere.path()), "stltmp1");
        QVERIFY(QFile::link(elsewhere.path(), home.filePath("tmp_link")));
        tidyFolder(QDir(home.path()), 25);
        QVERIFY(QFile::exists(elsewhere.filePath("stltmp1")));
    }

    void modificationTimeDoesNotCount_data()
    {
        QTest::addColumn<int>("modifiedHoursAgo");
        QTest::addColumn<int>("hours");
        QTest::addColumn<bool>("stays");
        QTest::newRow("young, modified long ago") << 1000 << 0 << true;
        QTest::newRow("old, modified just now") << -25 << 25 << false;
    }

    void modificationTimeDoesNotCount()
    {
        QFETCH(int, modifiedHoursAgo);
        QFETCH(int, hours);
        QFETCH(bool, stays);
        const QTemporaryDir home;
        makeEntry(QDir(home.path()), "a.log");
        QFile file(home.filePath("a.log"));
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QDateTime modified = QDateTime::currentDateTime().addSecs(-modifiedHoursAgo * hour);
        QVERIFY(file.setFileTime(modified, QFileDevice::FileModificationTime));
        file.close();
        tidyFolder(QDir(home.path()), hours);
        QCOMPARE(file.exists(), stays);
    }
};

QTEST_GUILESS_MAIN(TestHousekeeping)
#include "tst_housekeeping.moc"

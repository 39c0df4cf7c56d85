#include "net/downloadmanager.h"
#include "net/networkmanager.h"
#include "net/testserver.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace marlowen;

namespace {

const Version next{3, 0, 20};

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A download manager with its own folder and server.
struct Stage
{
    QTemporaryDir folder;
    TestServer server;
    NetworkManager network;
    DownloadManager downloads{network, server.url(QStringLiteral("/u/")), folder.path()};
    QStringList failures; ///< sentence of each outcome; empty for success
    Stage()
    {
        QObject::connect(
            &downloads, &DownloadManager::finished, &network,
            [this](const Outcome &o) { failures.push_back(o ? QString() : o.failure().detail); });
    }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }
};

} // namespace

class TestUpdates : public QObject
{
    Q_OBJECT

private slots:
    void versionsAreParsed()
    {
        const std::pair<const char *, Version> rows[] = {
            {"3.000.00019", {3, 0, 19}},
            {"3_000_00020,beta", {3, 0, 20}},
            {"3.001", {3, 1}},
            {"3.1.19", {}},
            {"3.0001", {}},
            {"13.000", {}},
            {"3.000.19", {}},
            {"3.000,", {}},
            {"", {}},
            {"3.000.00019\n3.001", {}},
        };
        for (const auto &[text, version] : rows)
            QCOMPARE(parseVersion(QString::fromLatin1(text)), version);
    }

    void versionsAreCompared()
    {
        const std::tuple<Version, Version, int> rows[] = {
            {{}, {}, 0},
            {{}, {1, 0}, -1},
            {{3, 1}, {3, 0, 19}, 1},
            {{3, 0}, {3, 0, 0}, 0},
            {{3, 0, 19}, {3, 0, 20}, -1},
            {{4, 0}, {3, 999, 99999}, 1},
        };
        for (const auto &[a, b, order] : rows) {
            QCOMPARE(compareVersions(a, b), order);
            QCOMPARE(compareVersions(b, a), -order);
        }
        QCOMPARE(newestUpdate({{2, 0}, {3, 1}, next}), (Version{3, 1}));
        QCOMPARE(newestUpdate({programVersion(), {2, 999}}), Version());
    }

    void aDayMustPass()
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        QVERIFY(dailyCheckDue({}, now) && dailyCheckDue(now.addSecs(-86400), now));
        QVERIFY(!dailyCheckDue(now.addSecs(-86399), now));
        QVERIFY(dailyCheckDue(now.addSecs(60), now));
    }

    void theChannelIsReadFromAFile()
    {
        Stage stage;
        QCOMPARE(stage.downloads.channel(), "release");
        QFile file(stage.folder.filePath(QStringLiteral("update.txt")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("\n beta\nother");
        file.close();
        QCOMPARE(stage.downloads.channel(), "beta");
    }

    void checksReadTheList()
    {
        Stage stage;
        const QByteArray path = "/u/checkmarlowen.php";
        stage.server.answer(path, jsonReply(R"({"status":"OK","version":["3.001","3.1.19",7]})"));
        QCOMPARE(stage.downloads.checkForUpdate(DLInstaller, programVersion()),
                 QList<Version>{Version({3, 1})});
        QVERIFY(stage.server.requests[0].contains("version=3.000.00019&type=release "));
        for (const char *json : {R"({"status":"NO","version":["3.001"]})", "{}", "nonsense"}) {
            stage.server.answer(path, jsonReply(json));
            QVERIFY(!stage.downloads.checkForUpdate(DLInstaller, programVersion()));
        }
    }

    void downloadsAreSavedInTheFolder()
    {
        Stage stage;
        stage.server.act("/u/getmarlowen.php", [&stage](QTcpSocket &socket) {
            const bool readme = stage.server.requests.last().contains("name=readme");
            socket.write(fileReply("../x", readme ? "news" : "MZ program"));
        });
        stage.downloads.download(next);
        QTRY_COMPARE(stage.failures, QStringList{QString()});
        const QString installer = stage.downloads.filePath(DLInstaller, next);
        QCOMPARE(contents(installer), QByteArray("MZ program"));
        QCOMPARE(contents(stage.downloads.filePath(DLReadme, next)), QByteArray("news"));
        QCOMPARE(stage.files().size(), 2);
        QCOMPARE(stage.downloads.downloadedUpdate(), next);
        QVERIFY(stage.server.requests[0].contains("name=marlowen&version=3.000.00020"));
        QTest::ignoreMessage(QtDebugMsg, "Launching Marlowen Update");
        QTest::ignoreMessage(QtDebugMsg, "Failed to launch");
        QVERIFY(!stage.downloads.open(DLInstaller, QStringLiteral("/bin/sh")));
    }

    void badDownloadsLeaveNothing_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("no program") << fileReply("a.exe", "<html>sold out</html>");
        QTest::newRow("empty") << fileReply("a.exe", {});
        QTest::newRow("cut") << fileReply("a.exe", "MZ program").chopped(1);
        QTest::newRow("gone") << httpReply("Content-Type: text/html", "MZ", "410 Gone");
        QTest::newRow("an answer in JSON") << jsonReply("{\"status\":\"NO\"}");
    }

    void badDownloadsLeaveNothing()
    {
        QFETCH(QByteArray, reply);
        Stage stage;
        stage.server.answer("/u/getmarlowen.php", reply);
        stage.downloads.download(next);
        QTRY_COMPARE(stage.failures.size(), 1);
        QVERIFY(!stage.failures[0].isEmpty());
        QCOMPARE(stage.files(), QStringList());
        QVERIFY(!stage.downloads.isDownloading());
    }

    void cancelKeepsTheOldFile()
    {
        Stage stage;
        QFile old(stage.downloads.filePath(DLInstaller, next));
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();
        stage.server.act("/u/getmarlowen.php", [](QTcpSocket &socket) {
            socket.write(fileReply("a", "MZ" + QByteArray(100000, 'x')).chopped(10));
            // Progress is not reported more often than every 100 ms.
            QTimer::singleShot(300, &socket, [&socket] { socket.write("more"); });
        });
        connect(&stage.downloads, &DownloadManager::progressed, &stage.downloads,
                &DownloadManager::cancel);
        stage.downloads.download(next);
        QTRY_VERIFY(!stage.downloads.isDownloading());
        QTRY_COMPARE(stage.server.disconnections, 1);
        QVERIFY(!stage.network.hasPending());
        QVERIFY(stage.failures.empty());
        QCOMPARE(contents(old.fileName()), QByteArray("old"));
    }
};

QTEST_GUILESS_MAIN(TestUpdates)
#include "tst_updates.moc"

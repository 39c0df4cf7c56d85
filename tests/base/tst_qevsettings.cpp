#include "base/qevsettings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace marlowen;

namespace {

QSettings previousStore()
{
    const QevSettings current;
    return QSettings(QSettings::UserScope, current.organizationName(), QStringLiteral("Marlowen2"));
}

QString madeFile(const QTemporaryDir &folder, const QString &name)
{
    QFile file(folder.filePath(name));
    (void)file.open(QIODevice::WriteOnly);
    return QFileInfo(file).canonicalFilePath();
}

} // namespace

class TestQevSettings : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QevSettings().clear();
        QSettings(QSettings::UserScope, QevSettings().organizationName(),
                  QStringLiteral("Marlowen2"))
            .clear();
    }

    void recentFiles_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QString>("added");
        QTest::addColumn<QStringList>("after");

        const QStringList five{"/a", "/b", "/c", "/d", "/e"};
        QTest::newRow("first") << QStringList{} << "/a" << QStringList{"/a"};
        QTest::newRow("sixth drops the oldest")
            << five << "/f" << QStringList{"/f", "/a", "/b", "/c", "/d"};
        QTest::newRow("third moves to the front")
            << five << "/c" << QStringList{"/c", "/a", "/b", "/d", "/e"};
        QTest::newRow("letter case tells apart")
            << QStringList{"/a", "/b"} << "/A" << QStringList{"/A", "/a", "/b"};
        QTest::newRow("every old copy goes")
            << QStringList{"/a", "/b", "/a"} << "/a" << QStringList{"/a", "/b"};
        QTest::newRow("overlong list is cut")
            << QStringList{"/1", "/2", "/3", "/4", "/5", "/6", "/7"} << "/4"
            << QStringList{"/4", "/1", "/2", "/3", "/5"};
    }

    void recentFiles()
    {
        QFETCH(QStringList, before);
        QFETCH(QString, added);
        QFETCH(QStringList, after);
        QevSettings settings;
        settings.setValue("recentFiles", before);
        settings.addRecentFile(added);
        QCOMPARE(settings.recentFiles(), after);
        // Synced at once: a store opened by file name sees it too.
        QCOMPARE(QSettings(settings.fileName(), QSettings::NativeFormat)
                     .value("recentFiles")
                     .toStringList(),
                 after);
    }

    void lastFileIsCanonicalAndHeadsTheRecentFiles()
    {
        const QTemporaryDir folder;
        const QString file = madeFile(folder, "medal.scp");
        QevSettings().setLastFile(folder.path() + "/./medal.scp");
        const QevSettings settings;
        QCOMPARE(settings.lastFile(), file);
        QCOMPARE(settings.lastFolder(), QFileInfo(file).path());
        QCOMPARE(settings.recentFiles(), QStringList{file});

        QFile::remove(file);
        QCOMPARE(settings.lastFile(), file);
        QCOMPARE(settings.lastFolder(), QString());
    }

    void lastFileThatIsMissingIsStoredEmpty()
    {
        QevSettings settings;
        settings.addRecentFile("/a");
        settings.setLastFile("/no/such/file.scp");
        QCOMPARE(settings.lastFile(), QString());
        QCOMPARE(settings.lastFolder(), QString());
        QCOMPARE(settings.recentFiles(), (QStringList{"", "/a"}));
    }

    void migrationFillsGapsOnce()
    {
        {
            QSettings previous = previousStore();
            previous.setValue("lastDir", "old");
            previous.setValue("material", "gold");
            previous.setValue("ui/themeMode", 1);
            previous.setValue("/state/view/cursorScale", 200);
            QevSettings().setValue("lastDir", "new");
        }
        migrateSettings();
        const QevSettings current;
        QCOMPARE(current.value("lastDir").toString(), QString("new"));
        QCOMPARE(current.value("material").toString(), QString("gold"));
        QVERIFY(current.darkTheme());
        QCOMPARE(current.value("/state/view/cursorScale").toInt(), 200);
        QVERIFY(current.value("migratedFromMarlowen2").toBool());

        previousStore().setValue("splitterState", "late");
        migrateSettings();
        QVERIFY(!current.contains("splitterState"));
    }

    void migrationWithoutAPreviousStoreCountsAsDone()
    {
        migrateSettings();
        QVERIFY(QevSettings().value("migratedFromMarlowen2").toBool());
        previousStore().setValue("material", "gold");
        migrateSettings();
        QVERIFY(!QevSettings().contains("material"));
    }
};

QTEST_GUILESS_MAIN(TestQevSettings)
#include "tst_qevsettings.moc"

#include "base/qevsettings.h"
#include "childprocess.h"

#include <array>

using namespace marlowen;

// Two windows of the program are two processes that write one store.

namespace {

constexpr int rounds = 40;

/// Writes as a window does that is used and closed, repeatedly, with a new key in each round.
int writeAs(const QString &window)
{
    for (int round = 0; round < rounds; ++round) {
        QevSettings settings;
        settings.setValue(QStringLiteral("geometry"), QByteArray(400, window[0].toLatin1()));
        settings.setValue(QStringLiteral("materials/%1 %2/shinyness").arg(window).arg(round),
                          round);
        settings.sync();
        if (settings.status() != QSettings::NoError)
            return 1;
    }
    return 0;
}

const Scenario scenarios[] = {
    {"left", [] { return writeAs(QStringLiteral("left")); }},
    {"right", [] { return writeAs(QStringLiteral("right")); }},
};

} // namespace

class TestSharedSettings : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsLostWhenTwoWindowsWriteAtOnce()
    {
        QevSettings().clear();
        QevSettings().setValue(QStringLiteral("lastExportDir"), QStringLiteral("/kept"));
        std::array<QProcess, 2> windows;
        for (size_t i = 0; i < windows.size(); ++i)
            windows[i].start(QCoreApplication::applicationFilePath(),
                             {QStringLiteral("--scenario"), QLatin1String(scenarios[i].name)});
        for (QProcess &window : windows) {
            QVERIFY(window.waitForFinished(20000));
            QCOMPARE(window.exitCode(), 0);
        }
        QevSettings settings;
        settings.sync();
        for (const Scenario &scenario : scenarios) {
            for (int round = 0; round < rounds; ++round) {
                const QString key =
                    QStringLiteral("materials/%1 %2/shinyness").arg(scenario.name).arg(round);
                QCOMPARE(settings.value(key, -1).toInt(), round);
            }
        }
        const QByteArray geometry = settings.value(QStringLiteral("geometry")).toByteArray();
        QVERIFY(geometry == QByteArray(400, 'l') || geometry == QByteArray(400, 'r'));
        QCOMPARE(settings.lastExportFolder(), QStringLiteral("/kept"));
    }
};

int main(int argc, char **argv)
{
    return runScenarioOrTest<TestSharedSettings>(argc, argv, scenarios);
}
#include "tst_sharedsettings.moc"

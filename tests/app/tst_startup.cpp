#include "programs.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

struct Run
{
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
    QList<QByteArray> log;
};

/// The program as a user starts it, with its own home folder.
class Program
{
public:
    struct Circumstances
    {
        QStringList environment = {};
        bool dataFolderBlocked = false;
    };

    explicit Program(const QStringList &arguments)
        : Program(arguments, Circumstances{})
    {
    }

    Program(const QStringList &arguments, const Circumstances &given)
    {
        QFile blocker(m_home.filePath("Marlowen3"));
        if (given.dataFolderBlocked)
            QVERIFY(blocker.open(QIODevice::WriteOnly));
        QStringList full = QProcess::systemEnvironment();
        full << "HOME=" + m_home.path() << "XDG_CONFIG_HOME=" + m_home.filePath(".config");
        m_process.setEnvironment(full + given.environment);
        m_process.start(programPath("marlowen"), arguments);
        m_process.waitForStarted();
        m_pid = m_process.processId(); // the process object forgets it when the process has gone
        m_log = m_home.filePath(QStringLiteral("Marlowen3/marlowen3_%1.log").arg(m_pid, 0, 16));
    }

    ~Program()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    QList<QByteArray> log() const
    {
        QFile file(m_log);
        return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QList<QByteArray>();
    }

    bool logs(const QByteArray &text) const { return log().join('\n').contains(text); }

    bool windowUp(const QString &title = "Brindlemark Marlowen 3") const { return _isShown(title); }

    /// Waits for the box and presses Return until it has gone.
    bool answerBox(const QString &title)
    {
        if (!QTest::qWaitFor([&] { return _isShown(title); }, 20000))
            return false;
        // The key goes to the focus, not to the window: the tool dies with a window that closes
        // between press and release, and the key would stay down.
        const auto gone = [&] { return !_isShown(title); };
        for (int presses = 0; presses < 20; ++presses) {
            _xdotool({"key", "Return"});
            if (QTest::qWaitFor(gone, 1000))
                return true;
        }
        return false;
    }

    Run end()
    {
        if (m_process.state() == QProcess::Running)
            ::kill(static_cast<pid_t>(m_pid), SIGTERM);
        return wait();
    }

    Run wait()
    {
        const bool ended = m_process.waitForFinished(20000);
        const bool whole = ended && m_process.exitStatus() == QProcess::NormalExit;
        // Ended by a signal: its number, negative; still running: -1000.
        const int code = whole ? m_process.exitCode() : ended ? -m_process.exitCode() : -1000;
        return {code, m_process.readAllStandardOutput(), m_process.readAllStandardError(), log()};
    }

private:
    static bool _xdotool(const QStringList &arguments)
    {
        QProcess tool;
        tool.start("xdotool", arguments);
        return tool.waitForFinished() && tool.exitCode() == 0;
    }

    bool _isShown(const QString &title) const
    {
        return _xdotool(
            {"search", "--onlyvisible", "--all", "--pid", QString::number(m_pid), "--name", title});
    }

    QTemporaryDir m_home;
    QProcess m_process;
    qint64 m_pid = 0;
    QString m_log;
};

/// Index of the first line from `from` on that begins with the text; -1 without one.
qsizetype lineAfter(const QList<QByteArray> &lines, qsizetype from, const QByteArray &text)
{
    for (qsizetype i = from; i < lines.size(); ++i) {
        if (lines[i].startsWith(text))
            return i;
    }
    return -1;
}

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private slots:
    void sessionReadsInOrder()
    {
        const QTemporaryDir folder;
        const QString picture = folder.filePath("bump.png");
        QImage image(16, 12, QImage::Format_Grayscale8);
        image.fill(128);
        QVERIFY(image.save(picture));

        Program program({picture});
        QTRY_VERIFY_WITH_TIMEOUT(program.windowUp("bump.png"), 20000);
        const Run run = program.end();
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.output, QByteArray("3.000.00019\n"));
        QVERIFY(run.log[0].startsWith("Starting Marlowen 3 log: "));
        QCOMPARE(run.log[1], QByteArray("Info: Starting Pattern Marlowen 3...3.000.00019"));
        qsizetype at = 1;
        for (const char *line :
             {"Info: GL Version String:: ", "Info: Scrubbing old logs",
              "Info: Cleaning temporary folders", "Info: About to create main window",
              "Info: Created main window", "Closing Marlowen 3 log: "}) {
            at = lineAfter(run.log, at + 1, line);
            QVERIFY2(at > 0, line);
        }
        QCOMPARE(at, run.log.size() - 2);
    }

    void missingFileOpensNothingAndIsNamed()
    {
        Program program({"/no/such/file.xyz"});
        QTRY_VERIFY_WITH_TIMEOUT(program.windowUp(), 20000);
        const Run run = program.end();
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.errors, QByteArray("marlowen: /no/such/file.xyz could not be opened\n"));
    }

    void boxOfADamagedFileFollowsTheWindow()
    {
        const QTemporaryDir folder;
        QFile damaged(folder.filePath("damaged.ptr"));
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("no", 2) == 2);
        damaged.close();
        Program program({damaged.fileName()});
        QTRY_VERIFY_WITH_TIMEOUT(program.windowUp(), 20000);
        QCOMPARE(program.end().exitCode, 0);
    }

    void integrationCallLoadsItsFileAfterStart()
    {
        const QTemporaryDir folder;
        QFile model(folder.filePath("model.xyz"));
        QVERIFY(model.open(QIODevice::WriteOnly));
        Program program({"first", model.fileName(), folder.filePath("out.map"), "second"});
        QTRY_VERIFY_WITH_TIMEOUT(program.logs("model.xyz"), 20000);
        const Run run = program.end();
        QCOMPARE(run.exitCode, 0);
        const qsizetype created = lineAfter(run.log, 0, "Info: Created main window");
        QVERIFY(created > 0);
        QVERIFY(lineAfter(run.log, created, "Warning: Unknown file type") > created);
    }

    void integrationStringsAreNotToolkitOptions()
    {
        Program program({"-platform", "/no/such/model.stl", "-style", "-qwindowtitle"});
        QTRY_VERIFY_WITH_TIMEOUT(program.windowUp(), 20000);
        QCOMPARE(program.end().exitCode, 0);
    }

    void signalDuringTheStartEndsIt()
    {
        Program program({}, {.dataFolderBlocked = true});
        QTRY_VERIFY_WITH_TIMEOUT(program.windowUp("Error opening Log"), 20000);
        QCOMPARE(program.end().exitCode, -SIGTERM);
    }

    void withoutADisplayOneSentenceIsPrinted()
    {
        Program program({}, {.environment = {"DISPLAY=:4711", "WAYLAND_DISPLAY="}});
        const Run run = program.wait();
        QCOMPARE(run.exitCode, 255);
        QCOMPARE(run.errors.count('\n'), 1);
        QVERIFY(run.errors.startsWith("marlowen: there is no display"));
    }

    void unwritableLogDoesNotStopTheProgram()
    {
        Program program({}, {.dataFolderBlocked = true});
        QVERIFY(program.answerBox("Error opening Log"));
        QTRY_VERIFY_WITH_TIMEOUT(program.windowUp(), 20000);
        QCOMPARE(program.end().exitCode, 0);
    }

    void machineWithoutOpenGlEndsTheStart()
    {
        Program program({}, {.environment = {"QT_XCB_GL_INTEGRATION=none"}});
        const Run run = program.wait();
        QCOMPARE(run.exitCode, 255);
        QCOMPARE(run.log.value(2),
                 QByteArray("Critical: glGetVersion returned null pointer, Can't continue"));
        QVERIFY(run.log.value(3).startsWith("Closing Marlowen 3 log: "));
    }

    void oldOpenGlIsReported()
    {
        Program program({}, {.environment = {"MESA_GL_VERSION_OVERRIDE=2.0"}});
        QVERIFY(program.answerBox("Missing OpenGL 2.1"));
        const Run run = program.wait();
        QCOMPARE(run.exitCode, 255);
        QVERIFY(run.log.value(2).startsWith("Info: GL Version String:: 2.0"));
        QCOMPARE(run.log.value(3),
                 QByteArray("Critical: Missing OpenGL 2.1 support, Can't continue"));
        QVERIFY(run.log.value(4).startsWith("Closing Marlowen 3 log: "));
    }
};

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"

#include "app/startup.h"

#include "app/brindlemarkstyle.h"
#include "app/housekeeping.h"
#include "app/launch.h"
#include "app/openglprobe.h"
#include "app/qef.h"
#include "app/qevapplication.h"
#include "app/terminationsignals.h"
#include "base/datafolder.h"
#include "base/messagehandler.h"
#include "base/qevsettings.h"
#include "base/sessionlog.h"
#include "base/version.h"
#include "ui/icons.h"
#include "ui/mainwindow.h"
#include "ui/themeswitcher.h"

#include <QMessageBox>
#include <QSurfaceFormat>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace marlowen {

namespace {

void chooseSurfaceFormat()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    QSurfaceFormat::setDefaultFormat(format);
}

/// While the toolkit looks for a display: what makes it give up is written to the debug file as
/// always, then reported in one sentence instead of a core dump.
QtMessageHandler writeToDebugFile = nullptr;

void endWithoutDisplay(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    writeToDebugFile(type, context, message);
    if (type != QtFatalMsg)
        return;
    std::fputs("marlowen: there is no display (or no OpenGL on it) to open a window on; "
               "marlowen-cli works without one\n",
               stderr);
    std::_Exit(-1);
}

void setAttributes()
{
    QCoreApplication::setAttribute(Qt::AA_UseDesktopOpenGL);
    // Always on in this toolkit version, which calls the two names deprecated.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QT_WARNING_POP
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
}

QStringList argumentTexts(int count, char **values)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts << QString::fromLocal8Bit(values[i]);
    return texts;
}

void logStep(const char *text)
{
    logInfo() << text << "\n";
    logFlush();
}

void openSessionLog()
{
    setLogFailureHandler([](const QString &title, const QString &sentence) {
        QMessageBox::critical(nullptr, title, sentence);
    });
    logInfo() << "Starting Pattern Marlowen 3..." << versionText << "\n";
    logFlush();
}

void tidyDataFolder()
{
    const QDateTime now = QDateTime::currentDateTime();
    logStep("Scrubbing old logs");
    scrubOldLogs(dataFolder(), now);
    logStep("Cleaning temporary folders");
    cleanTemporaryFolders(dataFolder(), now);
}

int savedThemeMode()
{
    return QevSettings().darkTheme() ? 1 : 0;
}

void installSavedStyle()
{
    themeSwitcher::setStyleFactory([](int mode) -> QStyle * { return new BrindlemarkStyle(mode); });
    themeSwitcher::installStyle(savedThemeMode());
}

void printVersion()
{
    std::printf("%s\n", versionText);
    std::fflush(stdout);
}

void showWindow(MainWindow &window)
{
    window.show();
    if (window.isMaximized())
        window.showMaximized();
    QTimer::singleShot(0, &window, [] { themeSwitcher::applyTheme(savedThemeMode()); });
}

int runWindow(QevApplication &application, const QStringList &arguments)
{
    tidyDataFolder();
    logStep("About to create main window");
    installSavedStyle();
    MainWindow window;
    application.setMainWindow(&window);
    quitOnTerminationSignals([&window] { return window.leaveWorkForNextStart(); });
    logStep("Created main window");
    printVersion();
    applyLaunchSteps(launchSteps(arguments), window);
    showWindow(window);
    return QCoreApplication::exec();
}

} // namespace

int runMarlowen(int argc, char **argv)
{
    installMessageHandler();
    chooseSurfaceFormat();
    setAttributes();
    writeToDebugFile = qInstallMessageHandler(endWithoutDisplay);
    // The arguments are file names and strings of the sister program; the toolkit would take one
    // like "-platform" for an option of its own and remove it.
    const QStringList arguments = argumentTexts(argc, argv);
    int programOnly = std::min(argc, 1);
    QevApplication application(programOnly, argv);
    if (qEnvironmentVariableIsSet("MARLOWEN_TRACE_EVENTS"))
        application.installEventFilter(new QEF(&application));
    QApplication::setWindowIcon(icon(QStringLiteral("logo")));
    migrateSettings();
    openSessionLog();
    const bool accepted = acceptGlVersion(readGlVersion());
    qInstallMessageHandler(writeToDebugFile);
    if (!accepted)
        return -1;
    try {
        return runWindow(application, arguments);
    } catch (const char *text) {
        reportFatalError(text);
        return 1;
    }
}

} // namespace marlowen

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

#include <cstdio>

namespace {

void _chooseSurfaceFormat()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    QSurfaceFormat::setDefaultFormat(format);
}

void _setAttributes()
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

void _logStep(const char *text)
{
    logInfo() << text << "\n";
    logFlush();
}

void _openSessionLog()
{
    setLogFailureHandler([](const QString &title, const QString &sentence) {
        QMessageBox::critical(nullptr, title, sentence);
    });
    logInfo() << "Starting Pattern Marlowen 3..." << versionText << "\n";
    logFlush();
}

void _tidyDataFolder()
{
    const QDateTime now = QDateTime::currentDateTime();
    _logStep("Scrubbing old logs");
    scrubOldLogs(dataFolder(), now);
    _logStep("Cleaning temporary folders");
    cleanTemporaryFolders(dataFolder(), now);
}

int _savedThemeMode()
{
    return QevSettings().darkTheme() ? 1 : 0;
}

void _installStyle()
{
    themeSwitcher::setStyleFactory([](int mode) -> QStyle * { return new BrindlemarkStyle(mode); });
    themeSwitcher::installStyle(_savedThemeMode());
}

void _printVersion()
{
    std::printf("%s\n", versionText);
    std::fflush(stdout);
}

void _showWindow(MainWindow &window)
{
    window.show();
    if (window.isMaximized())
        window.showMaximized();
    QTimer::singleShot(0, &window, [] { themeSwitcher::applyTheme(_savedThemeMode()); });
}

int _runWindow(QevApplication &application)
{
    _tidyDataFolder();
    _logStep("About to create main window");
    _installStyle();
    MainWindow window;
    application.setMainWindow(&window);
    _logStep("Created main window");
    _printVersion();
    applyLaunchSteps(launchSteps(QCoreApplication::arguments()), window);
    _showWindow(window);
    return QCoreApplication::exec();
}

} // namespace

int runMarlowen(int argc, char **argv)
{
    installMessageHandler();
    _chooseSurfaceFormat();
    _setAttributes();
    QevApplication application(argc, argv);
    if (qEnvironmentVariableIsSet("MARLOWEN_TRACE_EVENTS"))
        application.installEventFilter(new QEF(&application));
    quitOnTerminationSignals();
    QApplication::setWindowIcon(icon(QStringLiteral("logo")));
    migrateSettings();
    _openSessionLog();
    if (!acceptGlVersion(readGlVersion()))
        return -1;
    try {
        return _runWindow(application);
    } catch (const char *text) {
        reportFatalError(text);
        return 1;
    }
}

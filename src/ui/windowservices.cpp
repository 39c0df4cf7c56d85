#include "ui/windowservices.h"

#include "ui/centerarea.h"
#include "ui/commandset.h"
#include "ui/controllers/recoverycontroller.h"
#include "ui/controllers/updatecontroller.h"
#include "ui/help/helpwindow.h"
#include "workbench/workbench.h"

#include <QAction>
#include <QCoreApplication>
#include <QTimer>
#include <QWhatsThis>

#include <chrono>

namespace marlowen {

namespace {

/// A window that was killed a moment ago may still be ending, and hold its work until then.
constexpr std::chrono::seconds secondLook{3};

constexpr CommandRow commandRows[] = {
    {"restoreWork", QT_TRANSLATE_NOOP("Commands", "Restore Work"), "openRecent",
     QT_TRANSLATE_NOOP("Commands", "Lists the work of windows that ended before it was saved."), "",
     QT_TRANSLATE_NOOP("Commands", "There is no unsaved work of an earlier window.")},
    {"manual", QT_TRANSLATE_NOOP("Commands", "Manual"), "manual",
     QT_TRANSLATE_NOOP("Commands", "Opens the manual, with a list of all keys."), "F1", ""},
    {"whatsThis", QT_TRANSLATE_NOOP("Commands", "What's This?"), "whats_this",
     QT_TRANSLATE_NOOP("Commands", "Explains the part of the window that is clicked next."),
     "Shift+F1", ""},
};

} // namespace

WindowServices::WindowServices(Parts parts, QWidget *window, const QUrl &updates)
    : QObject(window)
    , m_parts(std::move(parts))
    , m_window(window)
    , m_recovery(new RecoveryController(
          m_parts.bench, {m_parts.center.recoveryPage(), m_parts.mayLoseWork}, window))
{
    CommandSet &commands = m_parts.commands;
    CenterArea &center = m_parts.center;
    connect(commands["restoreWork"], &QAction::triggered, this,
            [this, &center] { center.showRecovery(m_recovery->find()); });
    connect(commands["manual"], &QAction::triggered, this, &WindowServices::_showManual);
    connect(commands["whatsThis"], &QAction::triggered, this,
            [] { QWhatsThis::enterWhatsThisMode(); });
    connect(m_recovery, &RecoveryController::pageDone, &center,
            [&center] { center.showRecovery(false); });
    connect(m_recovery, &RecoveryController::listChanged, this, &WindowServices::setupControls);
    connect(m_recovery, &RecoveryController::said, this, &WindowServices::said);
    if (!updates.isEmpty())
        _connectUpdates(updates);
}

void WindowServices::addCommands(CommandSet &commands, const QUrl &updates)
{
    commands.add(commandRows);
    if (!updates.isEmpty())
        UpdateController::addCommands(commands);
}

QList<const char *> WindowServices::fileCommands()
{
    return {"restoreWork"};
}

QList<const char *> WindowServices::footCommands(const QUrl &updates)
{
    QList<const char *> commands{"manual", "whatsThis"};
    if (!updates.isEmpty())
        commands = UpdateController::commands() + commands;
    return commands;
}

void WindowServices::_connectUpdates(const QUrl &updates)
{
    m_updates = new UpdateController(m_parts.commands, m_window, updates);
    connect(m_updates, &UpdateController::said, this, &WindowServices::said);
}

void WindowServices::start()
{
    if (m_recovery->find())
        m_parts.center.showRecovery(true);
    else
        QTimer::singleShot(secondLook, this, [this] {
            const Workbench &bench = m_parts.bench;
            if (m_recovery->find() && !bench.relief() && !bench.model)
                m_parts.center.showRecovery(true);
        });
    if (m_updates)
        QTimer::singleShot(0, m_updates, &UpdateController::start);
}

void WindowServices::setupControls()
{
    m_recovery->setupControls(m_parts.commands);
}

bool WindowServices::leaveForNextStart()
{
    return m_recovery->leaveForNextStart();
}

void WindowServices::windowCloses()
{
    m_recovery->windowCloses();
}

void WindowServices::_showManual()
{
    if (!m_help)
        m_help = new HelpWindow(m_parts.commands, m_window);
    m_help->show();
    m_help->raise();
    m_help->activateWindow();
}

} // namespace marlowen

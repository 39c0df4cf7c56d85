#include "app/terminationsignals.h"

#include "base/sessionlog.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace marlowen {

namespace {

std::array<int, 2> pipeEnds{-1, -1};
bool requested = false;
std::function<bool()> leave;

/// Runs on the GUI thread for every signal.
void quitOrEnd()
{
    if (requested) {
        logInfo() << "Second termination signal, ending at once\n";
        logClose();
        std::_Exit(EXIT_FAILURE);
    }
    requested = true;
    // A dialog that is open must not keep the process.
    if (leave && leave())
        QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
    QCoreApplication::quit();
}

extern "C" void noteSignal(int)
{
    const char byte = 0;
    // A full pipe already holds the request.
    [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &byte, 1);
}

} // namespace

void quitOnTerminationSignals(std::function<bool()> leaveWork)
{
    leave = std::move(leaveWork);
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    QCoreApplication *app = QCoreApplication::instance();
    auto *notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, [] {
        char byte = 0;
        while (read(pipeEnds[0], &byte, 1) == 1)
            quitOrEnd();
    });
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, noteSignal);
}

} // namespace marlowen

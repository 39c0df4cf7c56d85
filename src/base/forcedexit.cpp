#include "base/forcedexit.h"

#include "base/sessionlog.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <cstdlib>

namespace {

void _endProcess()
{
    logInfo() << "Export complete but still running (a modal dialog or nested event loop); exiting "
                 "so Drafteon can import.\n";
    logFlush();
    std::_Exit(0);
}

} // namespace

void quitAfterExport()
{
    // The timer comes first: quitting closes the windows at once, and one of them may ask a
    // question.
    QTimer::singleShot(std::chrono::milliseconds(1500), QCoreApplication::instance(), _endProcess);
    QCoreApplication::quit();
}

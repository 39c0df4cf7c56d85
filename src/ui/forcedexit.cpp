#include "ui/forcedexit.h"

#include "base/sessionlog.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdlib>
#include <utility>

namespace marlowen {

void armForcedExit(std::function<void()> end)
{
    QTimer::singleShot(1500, QCoreApplication::instance(), [end = std::move(end)] {
        logInfo() << "Export complete but still running (a modal dialog or nested event loop); "
                     "exiting so Drafteon can import.\n";
        logFlush();
        end();
    });
}

void exitAtOnce()
{
    std::_Exit(0);
}

} // namespace marlowen

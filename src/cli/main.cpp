#include "base/sessionlog.h"
#include "cli/commandline.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <csignal>

using namespace marlowen;

int main(int argc, char **argv)
{
    // A file that outgrows its limit is a failed write, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("marlowen-cli"));
    // Standard error is for the one line that reports the failure.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const int status = runCommandLine(QCoreApplication::arguments().mid(1));
    logClose();
    return status;
}

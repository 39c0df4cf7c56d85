#include "base/sessionlog.h"
#include "cli/commandline.h"

#include <QCoreApplication>

#include <csignal>

int main(int argc, char **argv)
{
    // A file that outgrows its limit is a failed write, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("marlowen-cli"));
    const int status = runCommandLine(QCoreApplication::arguments().mid(1));
    logClose();
    return status;
}

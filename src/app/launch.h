#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace marlowen {

class MainWindow;

/// One thing that the command line asks of the main window.
struct LaunchStep
{
    enum class Kind {
        IntegrationString,
        SecondIntegrationString,
        ExportPath,
        ImportFile,
        OpenFile,
        MissingFile, ///< says that it is not there
        Raise,
    };

    Kind kind;
    QString text;

    bool operator==(const LaunchStep &) const = default;
};

/// What the arguments ask for, in the order in which it is done; the program itself is argument 0.
/// Up to three further arguments: a file to open, the export path, a second string. Four or more
/// are the sister program's call: string, import file, export path, second string; the rest is
/// ignored.
QList<LaunchStep> launchSteps(const QStringList &arguments);

void applyLaunchSteps(const QList<LaunchStep> &steps, MainWindow &window);

} // namespace marlowen

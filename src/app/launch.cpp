#include "app/launch.h"

#include "ui/mainwindow.h"

#include <QFileInfo>

#include <cstdio>
#include <functional>
#include <utility>

namespace marlowen {

namespace {

using Kind = LaunchStep::Kind;

QList<LaunchStep> fileSteps(const QStringList &arguments)
{
    QList<LaunchStep> steps;
    if (arguments.size() >= 4)
        steps.append({Kind::SecondIntegrationString, arguments[3]});
    if (arguments.size() >= 3)
        steps.append({Kind::ExportPath, arguments[2]});
    const bool found = QFileInfo::exists(arguments[1]);
    steps.append({found ? Kind::OpenFile : Kind::MissingFile, arguments[1]});
    return steps;
}

QList<LaunchStep> integrationSteps(const QStringList &arguments)
{
    return {
        {Kind::IntegrationString, arguments[1]},
        {Kind::ImportFile, arguments[2]},
        {Kind::ExportPath, arguments[3]},
        {Kind::SecondIntegrationString, arguments[4]},
        {Kind::Raise, {}},
    };
}

/// For the terminal.
void sayNotOpened(const QString &path)
{
    std::fprintf(stderr, "marlowen: %s could not be opened\n", qPrintable(path));
}

void openOrSay(MainWindow &window, const QString &path)
{
    if (!window.openFile(path, 0))
        sayNotOpened(path);
}

void sayMissing(MainWindow &window, const QString &path)
{
    window.reportMissing(path);
    sayNotOpened(path);
}

void applyStep(const LaunchStep &step, MainWindow &window)
{
    static const std::pair<Kind, std::function<void(MainWindow &, const QString &)>> actions[] = {
        {Kind::IntegrationString, &MainWindow::setIntegrationString},
        {Kind::SecondIntegrationString, &MainWindow::setSecondIntegrationString},
        {Kind::ExportPath, &MainWindow::setExportPath},
        {Kind::ImportFile, &MainWindow::setImportFile},
        {Kind::OpenFile, openOrSay},
        {Kind::MissingFile, sayMissing},
        {Kind::Raise, [](MainWindow &target, const QString &) { target.raise(); }},
    };
    for (const auto &[kind, act] : actions) {
        if (kind == step.kind)
            act(window, step.text);
    }
}

} // namespace

QList<LaunchStep> launchSteps(const QStringList &arguments)
{
    if (arguments.size() >= 5)
        return integrationSteps(arguments);
    if (arguments.size() >= 2)
        return fileSteps(arguments);
    return {};
}

void applyLaunchSteps(const QList<LaunchStep> &steps, MainWindow &window)
{
    for (const LaunchStep &step : steps)
        applyStep(step, window);
}

} // namespace marlowen

#pragma once

#include "workbench/workbench.h"

#include <QObject>

namespace marlowen {

class CenterArea;
class EditController;
class ImportController;
class MainWindow;
class ModelStage;
class SculptPanels;
class StatusLine;

/// Brings forward the page and panels for the present work: the views and the tab of a relief
/// that was opened, the preview of a model, the tools when an import is accepted; and names the
/// steps that were undone.
class WorkDisplay : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        Workbench &bench;
        CenterArea &center;
        SculptPanels &panels;
        ModelStage &stage;
        EditController &edits;
        ImportController &import;
        StatusLine &status;
    };
    /// Everything given outlives this object, which is the window's.
    WorkDisplay(const Parts &parts, MainWindow *window);

    /// The model of the workbench came or went.
    void showModel();

private:
    void _reliefReplaced();
    void _stepDone(const Step &step);

    Parts m_parts;
    MainWindow *m_window;
};

} // namespace marlowen

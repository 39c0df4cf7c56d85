#pragma once

#include "ui/centerarea.h"
#include "ui/controllers/editcontroller.h"
#include "ui/controllers/exportcontroller.h"
#include "ui/controllers/filecontroller.h"
#include "ui/controllers/importcontroller.h"
#include "ui/controllers/lookcontroller.h"
#include "ui/controllers/modelcontroller.h"
#include "ui/controllers/placecontroller.h"
#include "ui/controllers/selectioncontroller.h"
#include "ui/controllers/toolcontroller.h"
#include "ui/ribbon/ribbonmainwindow.h"
#include "ui/windowparts.h"
#include "workbench/workbench.h"

#include <QString>

#include <memory>

namespace marlowen {

class CommandSet;
class FlatWin;
class ModelStage;
class SculptWin;
class StatusLine;
class WindowServices;

/// The single top-level window: ribbon, quick access bar and file page, the 3D and the 2D view side
/// by side, the tool dock and the library dock. It connects commands, panels and views to the
/// controllers that carry them out, and keeps its own layout.
class MainWindow : public RibbonMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Opens the file by the end of its name, in any case. `flag` says who asks: 0 the command line
    /// or a command of the window, 1 a file-open request of the operating system. False when
    /// nothing was opened; the open work then stays.
    bool openFile(const QString &path, int flag);
    /// Remembers the file and calls loadImportFile() 1 ms after the event loop runs.
    void setImportFile(const QString &path);

    /// The strings of the sister program's call; stored, without further meaning here.
    void setIntegrationString(const QString &text) { m_integrationString = text; }
    void setSecondIntegrationString(const QString &text) { m_secondIntegrationString = text; }
    /// The program cannot go on: closing can no longer be cancelled.
    void endForGood() { m_files->endForGood(); }
    /// Waits until unsaved work is safe in its journal; closing asks no question then. False when
    /// it is not safe.
    bool leaveWorkForNextStart();
    /// Says that a file named at the start is not there.
    void reportMissing(const QString &path);
    /// Where the sister program waits for the height map; shows "Send to Drafteon".
    void setExportPath(const QString &path);

    Workbench &workbench() { return m_bench; }
    CommandSet &commands() { return *m_commands; }
    SculptWin *sculptWin() const { return m_center->sculptWin(); }
    FlatWin *flatWin() const { return m_center->flatWin(); }
    ExportController &exports() { return *m_exports; }
    EditController &edits() { return *m_edits; }
    FileController &files() { return *m_files; }
    SelectionController &selections() { return *m_selections; }

public slots:
    /// Opens the file given to setImportFile().
    void loadImportFile() { openFile(m_importFile, 0); }
    void toggleBackStage();
    void newRelief() { m_files->newRelief(); }
    void chooseFileToOpen() { m_files->chooseFileToOpen(); }
    void openLastFile() { m_files->openLastFile(); }
    void openRecentFile();
    /// False when the user cancelled or the file could not be written.
    bool saveWorkSpace() { return m_files->save(); }
    bool saveWorkSpaceAs() { return m_files->saveAs(); }
    void exportStlFile() { m_exports->exportStl(); }
    void exportObjFile() { m_exports->exportObj(); }
    void exportPtrFile() { m_exports->exportPattern(); }
    void exportToDrafteon() { m_exports->handOver(); }
    void showAbout();
    void showStartPage() { m_center->showStartPage(); }

    /// While a pattern is being placed it is taken off, and nothing else.
    void undo() { m_place->isPlacing() ? m_place->cancel() : m_bench.undo(); }
    void redo() { m_place->isPlacing() ? m_place->cancel() : m_bench.redo(); }
    void zoomAll();
    /// Enables what can act now; the rest says why it cannot.
    void setupControls();
    void setStatus(const QString &text);
    void showExtent();
    /// What of the relief is shown outside the views.
    void showRelief();
    /// A line in the status bar, for so many milliseconds; 0 until the next one.
    void say(const QString &text, int milliseconds);
    void saveLayout();
    void reliefDirtyChanged(bool) { setWindowTitle(m_files->windowTitle()); }
    void acceptClicked() { m_bench.acceptImport(); }
    void depthChosen(double cells) { m_files->rememberDepth(cells); }
    void updateClicked() { m_import->update(); }
    void tabActivated(int page);
    void ribbonTabChanged(int page);

    void toolChanged(Tool::Type type) { m_tool->choose(type); }
    void toolStrengthUpdated(double strength) { m_tool->set(&ToolParams::strength, strength); }
    void toolSizeUpdated(double size) { m_tool->set(&ToolParams::size, size); }
    void toolKeepTransparencyUpdated(bool on) { m_tool->set(&ToolParams::keepTransparency, on); }
    void toolModeUpdated(Tool::Mode mode) { m_tool->set(&ToolParams::mode, int32_t{mode}); }
    void toolHardnessUpdated(double hardness) { m_tool->set(&ToolParams::hardness, hardness); }
    void toolUseDecayLengthUpdated(bool on) { m_tool->set(&ToolParams::useDecay, on); }
    void decayLengthUpdated(double length) { m_tool->set(&ToolParams::decayLength, length); }
    void toolUseSmoothingUpdated(bool on) { m_tool->set(&ToolParams::smoothToolPaths, on); }
    void toolSmoothLengthChanged(int points) { m_tool->set(&ToolParams::smoothLength, points); }
    void toolFormUpdated(Tool::Form form) { m_tool->set(&ToolParams::form, int32_t{form}); }
    void toolFalloffUpdated(Tool::Falloff f) { m_tool->set(&ToolParams::falloff, int32_t{f}); }
    void toolAspectUpdated(double aspect) { m_tool->set(&ToolParams::aspect, aspect); }
    void toolAngleUpdated(double degrees) { m_tool->set(&ToolParams::angle, degrees); }
    void ceilingOrFloorChanged(bool on) { m_tool->set(&ToolParams::ceilingOrFloor, on); }
    void toleranceChanged(double tolerance) { m_tool->set(&ToolParams::tolerance, tolerance); }
    void continuousSelectionChanged(bool on) { m_tool->set(&ToolParams::continuous, on); }
    void symmetryXChanged(bool on) { m_tool->setFlag(&Relief::symmetryX, on); }
    void symmetryYChanged(bool on) { m_tool->setFlag(&Relief::symmetryY, on); }
    void invertChanged(bool on) { m_tool->setFlag(&Relief::invert, on); }
    void alphaChanged() { m_tool->alphaChanged(); }

    void applyCrop();
    void clearMaskClicked() { m_edits->run("maskClear"); }
    void invertMaskClicked() { m_edits->run("maskInvert"); }
    void selectionModifierChanged(SelectionModifier modifier);
    void sampleChanged(double) { m_edits->showSample(); }
    void unitChanged();
    void sampleEdited() { m_edits->sampleEdited(); }
    void sizeWanted(const SizeWish &inches) { m_edits->applySize(inches); }

    void setLightPos(int index) { m_look->setLight(index); }
    void chooseMaterial(const QString &name) { m_look->chooseMaterial(name); }
    void setMaterialColor(int term) { m_look->askForColor(term); }
    void setMaterialShinyness(int value) { m_look->setShininess(value); }
    void materialEditChanged(const QString &name) { m_look->editName(name); }
    void materialNameFinished() { m_look->finishName(); }
    void cloneOkClicked() { m_look->cloneMaterial(); }
    void deleteCancelClicked() { m_look->deleteMaterial(); }
    void colorOffsetChanged(double offset) { m_look->setColorOffset(offset); }
    void quantizationChanged(double levels) { m_look->setQuantization(levels); }
    void cursorSizeChanged(int index) { m_look->setPointer(index); }
    void switchTheme() { m_look->switchTheme(); }
    void legacyChosen(bool on) { m_look->setLegacy(on); }
    void toggleViewAlone()
    {
        m_center->toggleAlone();
        showExtent();
    }

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void _restoreLayout();
    void _settle();

    LookController *m_look = nullptr; ///< first: a change of the palette may come early
    Workbench m_bench;
    CommandSet *m_commands;
    ToolActions *m_toolActions;
    CenterArea *m_center;
    WindowDocks m_docks;
    WindowPages m_pages;
    RecentFilesMenu *m_recentFiles;
    std::unique_ptr<StatusLine> m_status;

    FileController *m_files;
    ExportController *m_exports;
    ToolController *m_tool;
    EditController *m_edits;
    PlaceController *m_place;
    SelectionController *m_selections;
    ImportController *m_import;
    ModelController *m_models;
    std::unique_ptr<ModelStage> m_stage;
    WindowServices *m_services;
    bool m_workIsLeft = false;

    QString m_importFile;
    bool m_docksAreNew = false; ///< they have no stored widths
    QString m_integrationString;
    QString m_secondIntegrationString;
};

} // namespace marlowen

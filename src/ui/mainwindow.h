#pragma once

#include "base/result.h"
#include "relief/tools/tool.h"
#include "relief/tools/toolparams.h"
#include "ui/pages/sizepage.h"
#include "ui/ribbon/ribbonmainwindow.h"
#include "workbench/workbench.h"

#include <QString>

#include <array>
#include <functional>
#include <memory>

class QLabel;
class QSplitter;
class QStackedWidget;

namespace marlowen {

class CollapsibleDock;
class CommandSet;
class EditPage;
class FlatWin;
class LibraryPanel;
class MaterialEditor;
class NewReliefDialog;
class RecentFilesMenu;
class SculptPanels;
class SculptWin;
class StartPage;
class ToolActions;
class ToolsPage;
class ViewSettingsPage;

/// The single top-level window: ribbon, quick access bar and file page, the 3D and the 2D view side
/// by side, the tool dock and the library dock. It routes every command to the room that carries it
/// out, opens files by their ending, guards unsaved work and keeps its own layout.
class MainWindow : public RibbonMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Opens the file by the end of its name, in any case. `flag` says who asks: 0 the command line
    /// or a command of the window, 1 a file-open request of the operating system. False when
    /// nothing was opened; what is open then stays.
    bool openFile(const QString &path, int flag);

    /// Remembers the file and calls loadImportFile() 1 ms after the event loop runs.
    void setImportFile(const QString &path);

    /// The strings of the sister program's call; stored, without further meaning here.
    void setIntegrationString(const QString &text);
    void setSecondIntegrationString(const QString &text);
    /// Where the sister program waits for the height map; shows "Send to Drafteon".
    void setExportPath(const QString &path);

    Workbench &workbench() { return m_bench; }
    CommandSet &commands() { return *m_commands; }
    const ToolParams &toolParams() const { return m_bench.tool; }
    SculptWin *sculptWin() const { return m_sculptWin; }
    FlatWin *flatWin() const { return m_flatWin; }

    /// The ribbon's pages, in their order.
    enum Page { ViewSettings, Size, SculptingTools, Edit2D, Export, OrientScale, PageCount };

    /// What ends the process when it does not end by itself after a hand-over; tests replace it.
    std::function<void()> forcedExit;

public slots:
    /// Opens the file given to setImportFile().
    void loadImportFile();

    void toggleBackStage();
    void newRelief();
    void chooseFileToOpen();
    void openLastFile();
    void openRecentFile();
    /// False when the user cancelled or the file could not be written.
    bool saveWorkSpace();
    bool saveWorkSpaceAs();
    void exportStlFile();
    void exportToDrafteon();
    void showAbout();

    void undo();
    void redo();
    void zoomAll();
    void setupControls();
    void setStatus(const QString &text);
    void reliefDirtyChanged(bool dirty);
    void acceptClicked();
    void updateClicked();
    void tabActivated(int page);
    void ribbonTabChanged(int page);

    void toolChanged(Tool::Type type);
    void toolStrengthUpdated(double strength);
    void toolSizeUpdated(double size);
    void toolKeepTransparencyUpdated(bool on);
    void toolModeUpdated(Tool::Mode mode);
    void toolHardnessUpdated(double hardness);
    void toolUseDecayLengthUpdated(bool on);
    void decayLengthUpdated(double length);
    void toolUseSmoothingUpdated(bool on);
    void toolSmoothLengthChanged(int points);
    void toolFormUpdated(Tool::Form form);
    void toolFalloffUpdated(Tool::Falloff falloff);
    void toolAspectUpdated(double aspect);
    void toolAngleUpdated(double degrees);
    void ceilingOrFloorChanged(bool on);
    void toleranceChanged(double tolerance);
    void continuousSelectionChanged(bool on);
    void symmetryXChanged(bool on);
    void symmetryYChanged(bool on);
    void invertChanged(bool on);
    void alphaChanged();

    void applyCrop();
    void clearMaskClicked();
    void invertMaskClicked();
    void selectNoneClicked();
    void selectionModifierChanged(SelectionModifier modifier);
    void sampleChanged(double height);
    void sampleEdited();
    void sizeWanted(const SizeWish &inches);

    void setLightPos(int index);
    void chooseMaterial(const QString &name);
    void setMaterialColor(int term);
    void setMaterialShinyness(int value);
    void materialEditChanged(const QString &name);
    void materialNameFinished();
    void cloneOkClicked();
    void deleteCancelClicked();
    void colorOffsetChanged(double offset);
    void quantizationChanged(double levels);
    void cursorSizeChanged(int index);
    void switchTheme();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void _addCommands();
    void _buildViews();
    void _buildDocks();
    void _buildRibbon();
    void _buildFilePage();
    void _buildStatusBar();
    void _connectCommands();
    void _connectPanels();
    void _connectRibbon();
    void _connectViews();
    void _connectWorkbench();
    void _restoreLayout();
    void _saveLayout();
    void _fitOnScreen();

    bool _mayLoseWork();
    bool _load(const QString &path);
    void _make(const NewReliefDialog &wish);
    void _install(std::unique_ptr<Relief> relief, const QString &path);
    void _show(const Failure &failure);
    void _apply(const Operation &operation);
    bool _saveTo(const QString &path);
    bool _busy() const;
    QString _reasonAgainstEditing() const;

    void _reliefReplaced();
    void _stepDone(const Step &step);
    void _showTool();
    void _showSize();
    void _showRelief();
    void _refreshViews();
    void _showTitle();
    void _showZoom();
    void _applyMaterial();
    void _applyBackdrop();
    void _bringForward(int view);
    template <typename Value>
    void _setParam(Value ToolParams::*member, Value value);

    Workbench m_bench;
    CommandSet *m_commands;
    ToolActions *m_tools;
    MaterialEditor *m_materials;

    QStackedWidget *m_center = nullptr;
    StartPage *m_startPage = nullptr;
    QSplitter *m_splitter = nullptr;
    SculptWin *m_sculptWin = nullptr;
    FlatWin *m_flatWin = nullptr;
    SculptPanels *m_panels = nullptr;
    LibraryPanel *m_library = nullptr;
    CollapsibleDock *m_toolDock = nullptr;
    CollapsibleDock *m_libraryDock = nullptr;
    RecentFilesMenu *m_recentFiles = nullptr;
    QLabel *m_position = nullptr;
    QLabel *m_extent = nullptr;

    ViewSettingsPage *m_viewSettings = nullptr;
    SizePage *m_sizePage = nullptr;
    ToolsPage *m_toolsPage = nullptr;
    EditPage *m_editPage = nullptr;

    std::array<double, 3> m_openedSize{}; ///< inches, as the relief was opened
    bool m_handedOver = false;            ///< the relief is with the sister program

    QString m_materialName; ///< as it is being typed

    QString m_importFile;
    QString m_integrationString;
    QString m_secondIntegrationString;
    QString m_exportPath;
};

} // namespace marlowen

#include "ui/mainwindow.h"

#include "base/qevsettings.h"
#include "base/version.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/collapsibledock.h"
#include "ui/commandset.h"
#include "ui/forcedexit.h"
#include "ui/materialeditor.h"
#include "ui/pages/editpage.h"
#include "ui/pages/toolspage.h"
#include "ui/pages/viewsettingspage.h"
#include "ui/panels/importpanel.h"
#include "ui/panels/sculptpanels.h"
#include "ui/panels/toolpanel.h"
#include "ui/progressbox.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/ribbon/ribboncolors.h"
#include "ui/startpage.h"
#include "ui/themeswitcher.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>

namespace marlowen {

namespace {

enum View { View3d, View2d };

/// First size of the window; smaller screens are filled.
constexpr QSize roomySize(1400, 900);

/// Until the window manager and the docks have given the views their size.
constexpr int settleMs = 150;

constexpr char noRelief[] = "Open or make a relief first.";
constexpr char importFirst[] = "Accept the import first.";

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : RibbonMainWindow(parent)
    , forcedExit(exitAtOnce)
    , m_commands(new CommandSet(this))
    , m_materials(new MaterialEditor(
          QevSettings()
              .value(QStringLiteral("material"), QLatin1String(defaultMaterialName))
              .toString(),
          this))
{
    setAcceptDrops(true);
    _addCommands();
    m_tools = new ToolActions(*m_commands, this);
    _buildViews();
    _buildDocks();
    _buildRibbon();
    _buildFilePage();
    _buildStatusBar();
    _connectCommands();
    _connectRibbon();
    _connectPanels();
    _connectViews();
    _connectWorkbench();
    setupControls();
    _showTool();
    _showTitle();
    _applyBackdrop();
    _restoreLayout();
}

MainWindow::~MainWindow()
{
    // The views let go of the relief before the document deletes it.
    m_sculptWin->setRelief(nullptr);
    m_flatWin->setRelief(nullptr);
    m_sculptWin->setChanges(nullptr);
    m_flatWin->setChanges(nullptr);
}

void MainWindow::_buildViews()
{
    m_center = new QStackedWidget(this);
    m_splitter = new QSplitter(Qt::Horizontal, m_center);
    m_splitter->setObjectName(QStringLiteral("CentralSplitter"));
    m_sculptWin = new SculptWin(m_splitter);
    m_flatWin = new FlatWin(m_splitter);
    m_sculptWin->setAccessibleName(tr("3D view"));
    m_flatWin->setAccessibleName(tr("2D view"));
    m_splitter->addWidget(m_sculptWin);
    m_splitter->addWidget(m_flatWin);
    m_splitter->setSizes({600, 400});
    m_splitter->setStretchFactor(0, 3);
    m_splitter->setStretchFactor(1, 2);
    m_startPage = new StartPage(m_center);
    m_center->addWidget(m_splitter);
    m_center->addWidget(m_startPage);
    if (StartPage::shownAtStartup())
        m_center->setCurrentWidget(m_startPage);
    setCentralWidget(m_center);
    for (ReliefView *view :
         {static_cast<ReliefView *>(m_sculptWin), static_cast<ReliefView *>(m_flatWin)}) {
        view->setMinimumSize(80, 80);
        view->setFocusPolicy(Qt::StrongFocus);
        view->setChanges(&m_bench.changes());
        view->setTool(&m_bench.tool);
    }
}

void MainWindow::_buildStatusBar()
{
    m_position = new QLabel;
    m_position->setObjectName(QStringLiteral("position"));
    m_extent = new QLabel;
    m_extent->setObjectName(QStringLiteral("extent"));
    statusBar()->setContentsMargins(8, 0, 4, 0);
    statusBar()->addWidget(m_position, 1);
    statusBar()->addPermanentWidget(m_extent);
}

void MainWindow::_restoreLayout()
{
    const QevSettings settings;
    const QSize room = screen()->availableSize();
    if (room.width() < roomySize.width() || room.height() < roomySize.height())
        setWindowState(Qt::WindowMaximized);
    resize(roomySize.boundedTo(room * 0.9));
    restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
    _fitOnScreen();
    if (!restoreState(settings.value(QStringLiteral("windowState")).toByteArray())) {
        // Docks have widths only once the window is laid out.
        QTimer::singleShot(0, m_toolDock, &CollapsibleDock::takeOpenWidth);
        QTimer::singleShot(0, m_libraryDock, &CollapsibleDock::takeOpenWidth);
    }
    m_splitter->restoreState(settings.value(QStringLiteral("splitterState")).toByteArray());
    const int light = settings.value(QStringLiteral("lightPosition"), 0).toInt();
    m_viewSettings->showLightPosition(qBound(0, light, 7));
    setLightPos(m_viewSettings->lightPosition());
}

/// A layout kept from a larger or another screen must not leave the window out of reach.
void MainWindow::_fitOnScreen()
{
    const QRect room = screen()->availableGeometry();
    QRect place = geometry();
    place.setSize(place.size().boundedTo(room.size()));
    place.moveLeft(qBound(room.left(), place.left(), room.right() + 1 - place.width()));
    place.moveTop(qBound(room.top(), place.top(), room.bottom() + 1 - place.height()));
    if (place != geometry())
        setGeometry(place);
}

void MainWindow::_saveLayout()
{
    QevSettings settings;
    settings.setValue(QStringLiteral("geometry"), saveGeometry());
    settings.setValue(QStringLiteral("windowState"), saveState());
    settings.setValue(QStringLiteral("splitterState"), m_splitter->saveState());
    settings.setValue(QStringLiteral("material"), m_materials->current().name);
    settings.setValue(QStringLiteral("lightPosition"), m_viewSettings->lightPosition());
    settings.sync();
}

/// A relief opened before the window was on screen was fitted to views that had no size yet.
void MainWindow::showEvent(QShowEvent *event)
{
    RibbonMainWindow::showEvent(event);
    if (m_bench.relief() && !event->spontaneous())
        QTimer::singleShot(settleMs, this, &MainWindow::zoomAll);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (ProgressBox::anyAtWork()) {
        event->ignore();
        return;
    }
    m_bench.endStroke();
    if (!m_handedOver && !_mayLoseWork()) {
        event->ignore();
        return;
    }
    _saveLayout();
    event->accept();
}

void MainWindow::changeEvent(QEvent *event)
{
    RibbonMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_viewSettings) {
        _applyBackdrop();
        m_viewSettings->showMaterials(*m_materials);
    }
}

/// Behind the relief: darker than the chrome, so that the relief is the brightest thing.
void MainWindow::_applyBackdrop()
{
    const QColor chrome = palette().color(QPalette::Window);
    const QColor backdrop = isDarkPalette(palette()) ? mixedColor(chrome, Qt::black, 0.35)
                                                     : mixedColor(chrome, QColor(0x4a5260), 0.45);
    m_sculptWin->setBackdrop(backdrop);
    m_flatWin->setBackdrop(backdrop);
}

void MainWindow::_show(const Failure &failure)
{
    QMessageBox::critical(this, failure.title, failure.sentence);
}

void MainWindow::_reliefReplaced()
{
    Relief *relief = m_bench.relief();
    m_center->setCurrentWidget(m_splitter);
    m_sculptWin->setRelief(relief);
    m_flatWin->setRelief(relief);
    m_panels->importPanel()->refresh();
    if (m_bench.importOpen())
        m_panels->showImportTab();
    else
        m_panels->showToolTab();
    m_openedSize = {};
    _showSize();
    m_editPage->showSample(double(relief->sampleHeight));
    // The views know their size only after the first layout.
    QTimer::singleShot(0, this, &MainWindow::zoomAll);
}

/// Why the relief cannot be edited now; empty when it can.
QString MainWindow::_reasonAgainstEditing() const
{
    if (!m_bench.relief())
        return tr(noRelief);
    return m_bench.importOpen() ? tr(importFirst) : QString();
}

/// Enables what can act now; the rest says why it cannot.
void MainWindow::setupControls()
{
    const Relief *relief = m_bench.relief();
    const QString needsRelief = relief ? QString() : tr(noRelief);
    const QString needsEditing = _reasonAgainstEditing();
    for (const char *id : {"save", "saveAs", "zoomAll", "exportStl", "sendToDrafteon"})
        m_commands->setReason(id, needsRelief);
    for (const char *id : {"maskClear", "maskInvert"})
        m_commands->setReason(id, needsEditing);
    m_tools->setReason(needsEditing);
    m_toolsPage->showLimit(static_cast<Tool::Type>(m_bench.tool.type), m_bench.tool.ceilingOrFloor,
                           needsEditing);
    const bool cropReady = needsEditing.isEmpty() && m_bench.tool.type == Tool::Crop &&
                           !m_flatWin->cropOutline().isEmpty();
    (*m_commands)["cropApply"]->setEnabled(cropReady);
    (*m_commands)["selectNone"]->setEnabled(relief && relief->selectionActive);
    SculptEngine *engine = needsEditing.isEmpty() ? &m_bench.engine() : nullptr;
    m_sculptWin->setEngine(engine);
    m_flatWin->setEngine(engine);
    m_sculptWin->setReason(needsEditing);
    m_flatWin->setReason(needsEditing);
    (*m_commands)["openLast"]->setEnabled(!QevSettings().recentFiles().isEmpty());
    ribbonBar()->setPageVisible(Export, needsEditing.isEmpty());
}

void MainWindow::_stepDone(const Step &step)
{
    if (step.kind != Step::Accept)
        return;
    m_openedSize = {};
    m_panels->showToolTab();
    m_sculptWin->setFocus();
    _showRelief();
}

void MainWindow::acceptClicked()
{
    m_bench.acceptImport();
}

void MainWindow::updateClicked()
{
    ProgressBox progress(tr("Making the bas-relief"), this);
    m_bench.session().update(&progress);
}

void MainWindow::setStatus(const QString &text)
{
    m_position->setText(text);
    _showZoom();
}

void MainWindow::reliefDirtyChanged(bool)
{
    _showTitle();
}

/// "Brindlemark Marlowen 3 - name *"
void MainWindow::_showTitle()
{
    QString title = QString::fromLatin1(productName);
    if (m_bench.relief()) {
        const QString name = m_bench.name();
        title += QStringLiteral(" - ") + (name.isEmpty() ? tr("new relief") : name);
    }
    if (m_bench.isModified())
        title += QStringLiteral(" *");
    setWindowTitle(title);
}

void MainWindow::_showZoom()
{
    const Relief *relief = m_bench.relief();
    if (!relief) {
        m_extent->clear();
        return;
    }
    const LengthUnit &unit = lengthUnits[static_cast<size_t>(m_sizePage->unit())];
    const auto length = [&unit](int cells) {
        return QString::number(cells / cellsPerInch / unit.inches, 'f', 2);
    };
    m_extent->setText(QStringLiteral("%1 × %2  ·  %3 × %4 %5  ·  %6 %")
                          .arg(relief->width())
                          .arg(relief->height())
                          .arg(length(relief->width()), length(relief->height()), tr(unit.label))
                          .arg(qRound(m_sculptWin->camera().zoom * 100)));
}

void MainWindow::undo()
{
    m_bench.undo();
}

void MainWindow::redo()
{
    m_bench.redo();
}

void MainWindow::zoomAll()
{
    m_sculptWin->zoomAll();
    m_flatWin->zoomAll();
    _showZoom();
}

void MainWindow::ribbonTabChanged(int page)
{
    tabActivated(page);
}

/// The page brings its view forward if it is hidden; otherwise the splitter stands as it is.
void MainWindow::tabActivated(int page)
{
    if (page == Edit2D)
        _bringForward(View2d);
    else if (page == SculptingTools)
        _bringForward(View3d);
}

void MainWindow::_bringForward(int view)
{
    QList<int> sizes = m_splitter->sizes();
    if (sizes.size() != 2 || sizes[view] > 0)
        return;
    const int half = (sizes[View3d] + sizes[View2d]) / 2;
    m_splitter->setSizes({half, half});
}

void MainWindow::switchTheme()
{
    const int mode = QevSettings().darkTheme() ? 0 : 1;
    QevSettings().setThemeMode(mode);
    themeSwitcher::applyTheme(mode);
    m_viewSettings->showTheme(mode == 1);
}

} // namespace marlowen

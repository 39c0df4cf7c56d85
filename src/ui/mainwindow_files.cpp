#include "ui/mainwindow.h"

#include "base/qevsettings.h"
#include "base/sessionlog.h"
#include "files/drafteonmap.h"
#include "files/formats.h"
#include "files/stlwriter.h"
#include "files/workspacefile.h"
#include "import/openfile.h"
#include "relief/grid/relief.h"
#include "ui/aboutbox.h"
#include "ui/commandset.h"
#include "ui/forcedexit.h"
#include "ui/newreliefdialog.h"
#include "ui/progressbox.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/ribbonbackstage.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>

#include <algorithm>
#include <new>

namespace marlowen {

// What the window does with files: open, save, export, hand over, and the guard of unsaved work.

namespace {

using Loaded = Result<std::unique_ptr<Relief>>;

bool opensHere(const QString &path)
{
    const Format *format = formatOf(path);
    return format && format->inWindow;
}

/// "Sculpt Files (*.scp *.jpg ...)".
QString openFilter()
{
    return MainWindow::tr("Sculpt Files (%1)").arg(openPatterns().join(QLatin1Char(' ')));
}

/// A question that only a save dialog can ask.
struct SaveQuestion
{
    QString title;
    QString filter;
    QString ending; ///< a name that ends so, in any case, stays as it is
    QString suffix; ///< what any other name gets, with its dot
    QString folder;
    QString name;
};

/// The chosen path, ending in the suffix; empty when the user cancelled. The dialog asks before an
/// older file is replaced; a name that only gets its suffix here is asked about here.
QString askForTarget(QWidget *window, const SaveQuestion &question)
{
    QFileDialog dialog(window, question.title, question.folder, question.filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    if (question.ending == question.suffix)
        dialog.setDefaultSuffix(question.suffix);
    if (!question.name.isEmpty())
        dialog.selectFile(question.name);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    QString path = dialog.selectedFiles().constFirst();
    if (path.endsWith(question.ending, Qt::CaseInsensitive))
        return path;
    path += question.suffix;
    const auto yes = QMessageBox::Yes;
    if (QFileInfo::exists(path) &&
        QMessageBox::question(window, question.title,
                              MainWindow::tr("%1 already exists.\nDo you want to replace it?")
                                  .arg(QFileInfo(path).fileName()),
                              yes | QMessageBox::No, QMessageBox::No) != yes)
        return {};
    return path;
}

QString firstOpenable(const QMimeData &data)
{
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile() && opensHere(url.toLocalFile()))
            return url.toLocalFile();
    }
    return {};
}

} // namespace

/// A command that opens or closes something waits while work or a question is in progress.
bool MainWindow::_busy() const
{
    return ProgressBox::anyAtWork() || QApplication::activeModalWidget() != nullptr;
}

bool MainWindow::openFile(const QString &path, int)
{
    if (!opensHere(path)) {
        logWarning() << "Unknown file type" << path << "\n";
        logFlush();
        statusBar()->showMessage(
            tr("%1 is no file that Marlowen opens.").arg(QFileInfo(path).fileName()), 5000);
        return false;
    }
    if (_busy())
        return false;
    m_bench.endStroke();
    return _load(path);
}

void MainWindow::newRelief()
{
    if (_busy())
        return;
    m_bench.endStroke();
    NewReliefDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted && _mayLoseWork())
        _make(dialog);
}

void MainWindow::_make(const NewReliefDialog &wish)
{
    try {
        auto relief = std::make_unique<Relief>(wish.widthCells(), wish.heightCells());
        const auto level = static_cast<float>(wish.level());
        if (level > 0.0F) {
            std::fill_n(relief->heights().data(), relief->cells(), level);
            relief->referenceLayer().copyFrom(relief->heights());
        }
        _install(std::move(relief), QString());
    } catch (const std::bad_alloc &) {
        _show({tr("New Failed"), tr("There is not enough memory for a relief of this size.")});
    }
}

/// Reads the file before asking about unsaved work, so that a damaged one costs one box and no
/// question.
bool MainWindow::_load(const QString &path)
{
    const auto read = [&]() -> Loaded {
        try {
            return openRelief(path, m_bench.session().openingSettings());
        } catch (const std::bad_alloc &) {
            return Failure{tr("Open Failed"), tr("There is not enough memory for this file.")};
        }
    };
    Loaded loaded = read();
    const bool modified = m_bench.isModified();
    if (loaded && !_mayLoseWork())
        return false;
    // The question may have saved to the very file.
    const QFileInfo own(m_bench.workspaceFile());
    if (loaded && modified && !m_bench.workspaceFile().isEmpty() && own == QFileInfo(path))
        loaded = read();
    if (!loaded) {
        _show(loaded.failure());
        return false;
    }
    _install(loaded.take(), path);
    return true;
}

void MainWindow::_install(std::unique_ptr<Relief> relief, const QString &path)
{
    backstage()->setOpen(false);
    m_bench.take(std::move(relief), path);
    if (path.isEmpty())
        return;
    QevSettings().setLastFile(path);
    m_recentFiles->refresh();
    setupControls();
}

/// The unsaved-work guard: true when what is open may be replaced.
bool MainWindow::_mayLoseWork()
{
    m_bench.endStroke();
    if (!m_bench.isModified())
        return true;
    QMessageBox box(QMessageBox::Question, QString::fromLatin1("Marlowen"),
                    tr("The current model has been modified."),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    box.setInformativeText(tr("Do you want to save your workspace?"));
    box.setDefaultButton(QMessageBox::Save);
    box.setEscapeButton(QMessageBox::Cancel);
    box.button(QMessageBox::Discard)->setText(tr("Discard"));
    const int answer = box.exec();
    if (answer == QMessageBox::Save)
        return saveWorkSpace();
    return answer == QMessageBox::Discard;
}

void MainWindow::toggleBackStage()
{
    m_recentFiles->refresh();
    backstage()->setOpen(!backstage()->isVisible());
}

void MainWindow::chooseFileToOpen()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Open"), QevSettings().lastFolder(), openFilter());
    if (!path.isEmpty())
        openFile(path, 0);
}

void MainWindow::openLastFile()
{
    const QStringList files = QevSettings().recentFiles();
    if (!files.isEmpty())
        openFile(files.constFirst(), 0);
}

void MainWindow::openRecentFile()
{
    const auto *action = qobject_cast<QAction *>(sender());
    if (action)
        openFile(action->data().toString(), 0);
}

bool MainWindow::saveWorkSpace()
{
    if (!m_bench.relief())
        return false;
    const QString path = m_bench.workspaceFile();
    return path.isEmpty() ? saveWorkSpaceAs() : _saveTo(path);
}

bool MainWindow::saveWorkSpaceAs()
{
    if (!m_bench.relief())
        return false;
    const QString name = QFileInfo(m_bench.name()).completeBaseName();
    const QString path = askForTarget(
        this, {tr("Save WorkSpace"), tr("Sculpt Work Space (*.scp);;"), QStringLiteral(".scp"),
               QStringLiteral(".scp"), QevSettings().lastFolder(), name});
    return !path.isEmpty() && _saveTo(path);
}

bool MainWindow::_saveTo(const QString &path)
{
    if (const Outcome saved = m_bench.save(path); !saved) {
        _show(saved.failure());
        return false;
    }
    QevSettings().setLastFile(path);
    m_recentFiles->refresh();
    setupControls();
    statusBar()->showMessage(tr("Saved."), 3000);
    return true;
}

void MainWindow::exportStlFile()
{
    if (!m_bench.relief())
        return;
    m_bench.endStroke();
    const QString name = QFileInfo(m_bench.name()).completeBaseName();
    const QString path =
        askForTarget(this, {tr("Export"), tr("Export (*.stl);;"), QStringLiteral("stl"),
                            QStringLiteral(".stl"), QevSettings().lastExportFolder(), name});
    if (path.isEmpty())
        return;
    ProgressBox progress(tr("Exporting"), this);
    const Outcome written = exportGridStl(*m_bench.relief(), path, &progress);
    if (!written && !progress.cancelled())
        return _show(written.failure());
    if (!written)
        return;
    QevSettings().setLastExportFile(path);
    statusBar()->showMessage(tr("Exported."), 3000);
}

void MainWindow::setImportFile(const QString &path)
{
    m_importFile = path;
    QTimer::singleShot(1, this, &MainWindow::loadImportFile);
}

void MainWindow::loadImportFile()
{
    openFile(m_importFile, 0);
}

void MainWindow::setIntegrationString(const QString &text)
{
    m_integrationString = text;
}

void MainWindow::setSecondIntegrationString(const QString &text)
{
    m_secondIntegrationString = text;
}

void MainWindow::setExportPath(const QString &path)
{
    m_exportPath = path;
    (*m_commands)["sendToDrafteon"]->setVisible(!path.isEmpty());
}

/// The relief goes to the sister program, which waits for this process to end.
void MainWindow::exportToDrafteon()
{
    if (!m_bench.relief() || m_exportPath.isEmpty())
        return;
    m_bench.endStroke();
    if (const Outcome sent = exportDrafteonMap(*m_bench.relief(), m_exportPath); !sent)
        return _show(sent.failure());
    m_handedOver = true;
    _saveLayout();
    armForcedExit(forcedExit);
    QCoreApplication::quit();
}

void MainWindow::showAbout()
{
    AboutBox(this).exec();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!_busy() && !firstOpenable(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QString path = firstOpenable(*event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    // The source of the drag waits for the drop to end; a question must not keep it.
    QTimer::singleShot(0, this, [this, path] { openFile(path, 0); });
}

} // namespace marlowen

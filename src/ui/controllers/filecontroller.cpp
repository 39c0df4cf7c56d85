#include "ui/controllers/filecontroller.h"

#include "base/qevsettings.h"
#include "base/sessionlog.h"
#include "base/version.h"
#include "files/formats.h"
#include "import/openfile.h"
#include "relief/grid/relief.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/newreliefdialog.h"
#include "workbench/workbench.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include <algorithm>
#include <new>

namespace marlowen {

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
    return FileController::tr("Sculpt Files (%1)").arg(openPatterns().join(QLatin1Char(' ')));
}

} // namespace

FileController::FileController(Workbench &bench, QWidget *window)
    : QObject(window)
    , m_bench(bench)
    , m_window(window)
{
}

QString FileController::firstOpenable(const QMimeData &data)
{
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile() && opensHere(url.toLocalFile()))
            return url.toLocalFile();
    }
    return {};
}

bool FileController::openFile(const QString &path)
{
    if (!opensHere(path)) {
        logWarning() << "Unknown file type" << path << "\n";
        logFlush();
        emit said(tr("%1 is no file that Marlowen opens.").arg(QFileInfo(path).fileName()), 5000);
        return false;
    }
    if (dialogsOpen())
        return false;
    m_bench.endStroke();
    return _load(path);
}

void FileController::newRelief()
{
    if (dialogsOpen())
        return;
    m_bench.endStroke();
    NewReliefDialog dialog(m_window);
    if (dialog.exec() == QDialog::Accepted && mayLoseWork())
        _make(dialog);
}

void FileController::_make(const NewReliefDialog &wish)
{
    try {
        auto relief = std::make_unique<Relief>(wish.widthCells(), wish.heightCells());
        const auto level = static_cast<float>(wish.level());
        if (level > 0.0F) {
            std::fill_n(relief->heights().data(), relief->cells(), level);
            relief->referenceLayer().copyFrom(relief->heights());
        }
        m_bench.take(std::move(relief));
    } catch (const std::bad_alloc &) {
        showFailure(m_window, {tr("New Failed"),
                               tr("There is not enough memory for a relief of this size.")});
    }
}

/// Reads the file before asking about unsaved work, so that a damaged one costs one box and no
/// question.
bool FileController::_load(const QString &path)
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
    if (loaded && !mayLoseWork())
        return false;
    // The question may have saved to the very file.
    const QFileInfo own(m_bench.workspaceFile());
    if (loaded && modified && !m_bench.workspaceFile().isEmpty() && own == QFileInfo(path))
        loaded = read();
    if (!loaded) {
        showFailure(m_window, loaded.failure());
        return false;
    }
    m_bench.take(loaded.take(), path);
    _remember(path);
    return true;
}

void FileController::_remember(const QString &path)
{
    QevSettings().setLastFile(path);
    emit filesChanged();
}

bool FileController::mayLoseWork()
{
    m_bench.endStroke();
    if (!m_bench.isModified())
        return true;
    QMessageBox box(QMessageBox::Question, QString::fromLatin1("Marlowen"),
                    tr("The current model has been modified."),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setInformativeText(tr("Do you want to save your workspace?"));
    box.setDefaultButton(QMessageBox::Save);
    box.setEscapeButton(QMessageBox::Cancel);
    box.button(QMessageBox::Discard)->setText(tr("Discard"));
    const int answer = box.exec();
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

void FileController::chooseFileToOpen()
{
    const QString path = QFileDialog::getOpenFileName(m_window, tr("Open"),
                                                      QevSettings().lastFolder(), openFilter());
    if (!path.isEmpty())
        openFile(path);
}

void FileController::openLastFile()
{
    const QStringList files = QevSettings().recentFiles();
    if (!files.isEmpty())
        openFile(files.constFirst());
}

bool FileController::save()
{
    if (!m_bench.relief())
        return false;
    const QString path = m_bench.workspaceFile();
    return path.isEmpty() ? saveAs() : _saveTo(path);
}

bool FileController::saveAs()
{
    if (!m_bench.relief())
        return false;
    const QString name = QFileInfo(m_bench.name()).completeBaseName();
    const QString path = askForTarget(
        m_window, {tr("Save WorkSpace"), tr("Sculpt Work Space (*.scp);;"), QStringLiteral(".scp"),
                   QStringLiteral(".scp"), QevSettings().lastFolder(), name});
    return !path.isEmpty() && _saveTo(path);
}

bool FileController::_saveTo(const QString &path)
{
    if (const Outcome saved = m_bench.save(path); !saved) {
        showFailure(m_window, saved.failure());
        return false;
    }
    _remember(path);
    emit said(tr("Saved."), 3000);
    return true;
}

QString FileController::windowTitle() const
{
    QString title = QString::fromLatin1(productName);
    if (m_bench.relief()) {
        const QString name = m_bench.name();
        title += QStringLiteral(" - ") + (name.isEmpty() ? tr("new relief") : name);
    }
    if (m_bench.isModified())
        title += QStringLiteral(" *");
    return title;
}

void FileController::setupControls(CommandSet &commands) const
{
    for (const char *id : {"save", "saveAs"})
        commands.setReason(id, reasonAgainstSaving(m_bench));
    commands["openLast"]->setEnabled(!QevSettings().recentFiles().isEmpty());
}

} // namespace marlowen

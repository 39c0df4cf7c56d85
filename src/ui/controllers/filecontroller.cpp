#include "ui/controllers/filecontroller.h"

#include "base/qevsettings.h"
#include "base/sessionlog.h"
#include "base/version.h"
#include "files/formats.h"
#include "import/mesh/openmodel.h"
#include "import/openfile.h"
#include "relief/grid/relief.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/controllers/importcontroller.h"
#include "ui/controllers/openablefiles.h"
#include "ui/newreliefdialog.h"
#include "workbench/workbench.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <new>

namespace marlowen {

using Loaded = Result<std::unique_ptr<Relief>>;

namespace {

QString depthKey()
{
    return importKey(fieldOf(importFields(), &ImportSettings::depth).info);
}

} // namespace

FileController::FileController(Workbench &bench, QWidget *window)
    : QObject(window)
    , m_bench(bench)
    , m_window(window)
{
}

bool FileController::openFile(const QString &path)
{
    if (!opensInWindow(path)) {
        logWarning() << "Unknown file type" << path << "\n";
        logFlush();
    }
    if (dialogsOpen())
        return false;
    if (!opensInWindow(path)) {
        showFailure(m_window, {tr("Open Failed"), tr("Marlowen cannot open files of this kind.")},
                    path);
        return false;
    }
    m_bench.endStroke();
    return opensAsModel(path) ? _show(path) : _load(path);
}

void FileController::newRelief()
{
    if (dialogsOpen())
        return;
    m_bench.endStroke();
    NewReliefDialog dialog(m_window);
    if (dialog.exec() != QDialog::Accepted || !mayLoseWork())
        return;
    Loaded made = dialog.makeRelief();
    if (made)
        m_bench.take(made.take());
    else
        showFailure(m_window, made.failure());
}

void FileController::rememberDepth(double cells)
{
    const Format *format = formatOf(m_bench.file());
    if (format && format->opensAs == OpensAs::Picture)
        QevSettings().setValue(depthKey(), cells);
}

/// A picture's depth is a share of its size until a person chose one.
ImportSettings FileController::_openingSettings() const
{
    ImportSettings settings = m_bench.session().openingSettings();
    const QVariant depth = QevSettings().value(depthKey());
    settings.proposeDepth = !depth.isValid();
    settings.depth = depth.toDouble();
    return clampedFields(importFields(), settings);
}

/// Reads the file before asking about unsaved work, so that a damaged one costs one box and no
/// question.
bool FileController::_load(const QString &path)
{
    const auto read = [&]() -> Loaded {
        try {
            return openRelief(path, _openingSettings());
        } catch (const std::bad_alloc &) {
            return Failure{tr("Open Failed"), tr("There is not enough memory for this file.")};
        }
    };
    Loaded loaded = read();
    const bool modified = m_bench.isModified();
    if (loaded && !mayLoseWork())
        return false;
    // The question may have saved to the very file.
    if (loaded && modified && QFileInfo(m_bench.file()) == QFileInfo(path))
        loaded = read();
    if (!loaded) {
        showFailure(m_window, loaded.failure(), path);
        return false;
    }
    const QString note = importNote(*loaded.value());
    m_bench.take(loaded.take(), path);
    m_stamp = stampOf(path);
    _remember(path);
    if (!note.isEmpty())
        emit said(note, 10000);
    return true;
}

/// The relief stays until the model is accepted, so this is the time to ask about it: then the
/// orienting is not interrupted.
bool FileController::_show(const QString &path)
{
    if (!mayLoseWork() || !openModel(path))
        return false;
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
    while (m_bench.isModified()) {
        const int answer = _askAboutWork();
        if (answer == QMessageBox::Discard || (answer == QMessageBox::Save && save()))
            return true;
        if (!m_ending)
            return false;
    }
    return true;
}

int FileController::_askAboutWork()
{
    const auto cancel = m_ending ? QMessageBox::NoButton : QMessageBox::Cancel;
    QMessageBox box(QMessageBox::Question, QString::fromLatin1("Marlowen"),
                    tr("The current model has been modified."),
                    QMessageBox::Save | QMessageBox::Discard | cancel, m_window);
    box.setInformativeText(tr("Do you want to save your workspace?"));
    box.setDefaultButton(QMessageBox::Save);
    box.button(QMessageBox::Save)->setText(tr("&Save"));
    box.button(QMessageBox::Discard)->setText(tr("&Discard"));
    if (!m_ending) {
        box.setEscapeButton(QMessageBox::Cancel);
        box.button(QMessageBox::Cancel)->setText(tr("&Cancel"));
    }
    return box.exec();
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
    return isWorkspace(m_bench.file()) ? _saveTo(m_bench.file()) : saveAs();
}

bool FileController::saveAs()
{
    if (!m_bench.relief())
        return false;
    const QString name = QFileInfo(m_bench.file()).completeBaseName();
    const QString ending = QLatin1String(workspaceFormat().ending);
    const QString path =
        askForTarget(m_window, {tr("Save WorkSpace"), tr("Sculpt Work Space (*%1);;").arg(ending),
                                ending, ending, QevSettings().lastFolder(), name});
    return !path.isEmpty() && _saveTo(path);
}

/// Another program, or another window of this one, may have written to the file meanwhile.
bool FileController::_mayReplace(const QString &path)
{
    const bool own = QFileInfo(path) == QFileInfo(m_bench.file());
    const FileStamp now = stampOf(path);
    if (!own || !now.modified.isValid() || now == m_stamp)
        return true;
    const auto yes = QMessageBox::Yes;
    return QMessageBox::question(m_window, tr("Save WorkSpace"),
                                 tr("%1 was changed by another program since it was opened here.\n"
                                    "Do you want to replace it?")
                                     .arg(QFileInfo(path).fileName()),
                                 yes | QMessageBox::No, QMessageBox::No) == yes;
}

bool FileController::_saveTo(const QString &path)
{
    if (!_mayReplace(path))
        return false;
    if (const Outcome saved = m_bench.save(path); !saved) {
        showFailure(m_window, saved.failure(), path);
        return false;
    }
    m_stamp = stampOf(path);
    _remember(path);
    emit said(tr("Saved."), 3000);
    return true;
}

QString FileController::windowTitle() const
{
    QString title = QString::fromLatin1(productName);
    if (m_bench.model)
        return title + QStringLiteral(" - ") + QFileInfo(m_bench.model->file).fileName();
    if (m_bench.relief()) {
        const QString name = QFileInfo(m_bench.file()).fileName();
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

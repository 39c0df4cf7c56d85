#include "ui/controllers/dialogs.h"

#include "ui/progressbox.h"
#include "workbench/workbench.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QTimer>

namespace marlowen {

QString asSentence(const QString &reason)
{
    QString sentence = reason.trimmed();
    if (sentence.isEmpty())
        return sentence;
    sentence[0] = sentence[0].toUpper();
    if (!QStringLiteral(".!?").contains(sentence.back()))
        sentence += QLatin1Char('.');
    return sentence;
}

void onceShown(QWidget *window, const std::function<void()> &act)
{
    if (window && !window->isVisible())
        QTimer::singleShot(0, window, act);
    else
        act();
}

void showFailure(QWidget *window, const Failure &failure, const QString &file)
{
    onceShown(window, [=] {
        QMessageBox box(QMessageBox::Critical, failure.title, failure.sentence, QMessageBox::Ok,
                        window);
        QStringList below{asSentence(failure.detail), QDir::toNativeSeparators(file)};
        below.removeAll(QString());
        box.setInformativeText(below.join(QLatin1Char('\n')));
        box.exec();
    });
}

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
                              QObject::tr("%1 already exists.\nDo you want to replace it?")
                                  .arg(QFileInfo(path).fileName()),
                              yes | QMessageBox::No, QMessageBox::No) != yes)
        return {};
    return path;
}

bool dialogsOpen()
{
    return ProgressBox::anyAtWork() || QApplication::activeModalWidget() != nullptr;
}

QString reasonAgainstSaving(const Workbench &bench)
{
    if (bench.model)
        return QObject::tr("Accept or cancel the model first.");
    return bench.relief() ? QString() : QObject::tr("Open or make a relief first.");
}

QString reasonAgainstEditing(Workbench &bench)
{
    if (bench.relief() && bench.session().active())
        return QObject::tr("Accept the import first.");
    return reasonAgainstSaving(bench);
}

} // namespace marlowen

#pragma once

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

/// Answers the dialogs over the window: message boxes with the given answers, in
/// order, and file dialogs with a path. Keeps the texts shown. An unexpected box is escaped
/// and remembered too.
class PersonAtHand : public QObject
{
public:
    PersonAtHand()
    {
        connect(&m_timer, &QTimer::timeout, this, &PersonAtHand::_look);
        m_timer.start(15);
    }

    QList<QMessageBox::StandardButton> answers;
    QString path;
    QStringList titles;
    QStringList sentences;
    QStringList details; ///< what stood below each sentence

private:
    /// Acts on each dialog once, from the event loop: its action may open the next one.
    void _look()
    {
        QWidget *over = QApplication::activeModalWidget();
        if (!over || !over->isVisible() || over->property("met").toBool())
            return;
        over->setProperty("met", true);
        // A file dialog reads its folder first, as a person does.
        const int patience = qobject_cast<QFileDialog *>(over) ? 200 : 0;
        QTimer::singleShot(patience, over, [this, over] { _act(over); });
    }

    void _act(QWidget *over)
    {
        titles.append(over->windowTitle());
        if (auto *box = qobject_cast<QMessageBox *>(over))
            _answer(*box);
        else if (auto *dialog = qobject_cast<QFileDialog *>(over))
            _choose(*dialog);
        else if (auto *other = qobject_cast<QDialog *>(over))
            _dismiss(*other);
    }

    void _answer(QMessageBox &box)
    {
        sentences.append(box.text());
        details.append(box.informativeText());
        QAbstractButton *button =
            answers.isEmpty() ? box.escapeButton() : box.button(answers.takeFirst());
        if (!button)
            button = box.buttons().constFirst();
        button->click();
    }

    void _choose(QFileDialog &dialog)
    {
        if (path.isEmpty())
            return dialog.reject();
        // Typing lets go of the file the dialog proposed.
        dialog.findChild<QListView *>(QStringLiteral("listView"))->clearSelection();
        dialog.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path);
        QMetaObject::invokeMethod(&dialog, "accept", Qt::DirectConnection);
    }

    void _dismiss(QDialog &dialog)
    {
        if (answers.isEmpty())
            return dialog.reject();
        answers.removeFirst();
        dialog.accept();
    }

    QTimer m_timer;
};

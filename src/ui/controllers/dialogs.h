#pragma once

#include "base/result.h"

#include <QString>

#include <functional>

class QWidget;

namespace marlowen {

class Workbench;

/// Acts now, or, while the program opens files before it shows its window, when the event loop
/// runs.
void onceShown(QWidget *window, const std::function<void()> &act);

/// Shows what went wrong in a box over the window, onceShown(); below the sentence the reason and
/// the file, where they are known.
void showFailure(QWidget *window, const Failure &failure, const QString &file = {});

/// A reason as a sentence, with a capital letter and a full stop.
QString asSentence(const QString &reason);

/// A question that only a save dialog can ask.
struct SaveQuestion
{
    QString title;
    QString filter;
    QString ending; ///< a name with this ending, in any case, is not changed
    QString suffix; ///< added to any other name, with its dot
    QString folder;
    QString name;
};

/// The chosen path, ending in the suffix; empty when the user cancelled. The dialog asks before an
/// older file is replaced; a name that only gets its suffix here is asked about here.
QString askForTarget(QWidget *window, const SaveQuestion &question);

/// Whether work or a question is in progress: a command that opens or closes something then waits.
bool dialogsOpen();

/// Why nothing can be saved or exported now; empty when it can.
QString reasonAgainstSaving(const Workbench &bench);
/// Why the relief cannot be edited now; empty when it can.
QString reasonAgainstEditing(Workbench &bench);

} // namespace marlowen

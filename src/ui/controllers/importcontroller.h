#pragma once

#include "import/importsettings.h"

#include <QObject>
#include <QString>

class QWidget;

namespace marlowen {

class ImportPanel;
class Workbench;

/// The key under which the settings store a field of the import.
QString importKey(const FieldInfo &info);

/// The commands of an open import, and which of its settings the next start remembers. Dialogs
/// stand over the window.
class ImportController : public QObject
{
    Q_OBJECT

public:
    /// Hands the remembered settings to the bench's session and lets the bas-relief follow its
    /// controls. The panel shows that session.
    ImportController(Workbench &bench, ImportPanel *panel, QWidget *window);

    /// Makes the bas-relief with a progress box.
    void update();
    /// Another file was opened.
    void opened();

private:
    void _showNotice();
    void _remember();
    void _flipAnswered();

    Workbench &m_bench;
    ImportPanel *m_panel;
    QWidget *m_window;
    ImportSettings m_remembered;
};

} // namespace marlowen

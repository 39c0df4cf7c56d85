#pragma once

#include <QTabWidget>

namespace marlowen {

class ImportPanel;
class ImportSession;
class ToolPanel;

/// Content of the tool dock: the tabs "Tool" and "Import", each scrolling when it is too high.
class SculptPanels : public QTabWidget
{
    Q_OBJECT

public:
    /// The session outlives the panels.
    explicit SculptPanels(ImportSession *session, QWidget *parent = nullptr);

    ToolPanel *toolPanel() const { return m_tool; }
    ImportPanel *importPanel() const { return m_import; }
    void showToolTab() { setCurrentIndex(0); }
    void showImportTab();

private:
    ToolPanel *m_tool;
    ImportPanel *m_import;
};

} // namespace marlowen

#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace marlowen {

class CommandSet;

/// The window of the user manual: its chapters, its text with pictures, and a search. The
/// text is docs/manual.md, followed by the list of all keys.
class HelpWindow : public QDialog
{
    Q_OBJECT

public:
    HelpWindow(const CommandSet &commands, QWidget *parent);

private:
    void _fillChapters();
    void _goToChapter(int row);
    /// Marks every match and moves to the next one after the cursor; with `anew` from where the
    /// last search began.
    void _search(bool anew);
    void _markAll();

    QLineEdit *m_field;
    QLabel *m_count;
    QListWidget *m_chapters;
    QTextBrowser *m_text;
};

} // namespace marlowen

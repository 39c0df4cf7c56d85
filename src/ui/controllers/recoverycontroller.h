#pragma once

#include "recovery/recoveryjournal.h"

#include <QObject>

#include <functional>

class QWidget;

namespace marlowen {

class CommandSet;
class RecoveryPage;
class Workbench;

/// Keeps the window's unsaved work in a journal and brings back what earlier windows left behind.
class RecoveryController : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        RecoveryPage *page;
        /// The unsaved-work guard: true when the open work may be replaced.
        std::function<bool()> mayLoseWork;
    };
    /// The workbench and the page outlive this object; dialogs stand over the window.
    RecoveryController(Workbench &bench, Parts parts, QWidget *window);
    ~RecoveryController() override;

    /// Looks for work that was left behind and lists it on the page. True when there is some.
    bool find();
    /// Whether find() found something that was neither restored nor discarded since.
    bool hasWork() const { return !m_found.isEmpty(); }
    void setupControls(CommandSet &commands) const;

    /// Waits until everything is safe on the disk, so that the window may go without asking. False
    /// when it is not; then nothing has happened.
    bool leaveForNextStart();
    /// The window closes and its work is not wanted any more, unless it was left for the next
    /// start.
    void windowCloses();

signals:
    /// The page is done with: show the views or the start page.
    void pageDone();
    /// The list changed.
    void listChanged();
    /// A line for the status bar, shown for so many milliseconds, 0 until the next one.
    void said(const QString &text, int milliseconds);

private:
    void _restore(const QString &folder);
    void _discard(const QString &folder);
    void _showState(bool on, const QString &reason);
    void _makeThumbnails();
    void _sayWhatIsNotListed(const WorkSearch &search);

    Parts m_parts;
    QWidget *m_window;
    RecoveryJournal m_journal;
    QList<FoundWork> m_found;
    int m_ofOtherVersion = 0; ///< at the last look
    bool m_left = false;
};

} // namespace marlowen

#include "ui/controllers/recoverycontroller.h"

#include "base/sessionlog.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/progressbox.h"
#include "ui/recoverypage.h"
#include "workbench/workbench.h"

#include <QAction>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QThreadPool>

#include <utility>

namespace marlowen {

namespace {

/// Longest wait for a slow disk before a termination signal asks about the work instead.
constexpr std::chrono::seconds longestWait{10};
constexpr int sentenceMs = 20000;

} // namespace

RecoveryController::RecoveryController(Workbench &bench, Parts parts, QWidget *window)
    : QObject(window)
    , m_parts(std::move(parts))
    , m_window(window)
    , m_journal(bench)
{
    connect(m_parts.page, &RecoveryPage::restoreClicked, this, &RecoveryController::_restore);
    connect(m_parts.page, &RecoveryPage::discardClicked, this, &RecoveryController::_discard);
    connect(m_parts.page, &RecoveryPage::laterClicked, this, &RecoveryController::pageDone);
    connect(&m_journal, &RecoveryJournal::stateChanged, this, &RecoveryController::_showState);
}

RecoveryController::~RecoveryController() = default;

bool RecoveryController::find()
{
    const WorkSearch search = searchWork(recoveryRoot());
    m_found = search.found;
    _sayWhatIsNotListed(search);
    m_parts.page->showWork(m_found);
    if (hasWork())
        _makeThumbnails();
    emit listChanged();
    return hasWork();
}

void RecoveryController::_sayWhatIsNotListed(const WorkSearch &search)
{
    QStringList sentences;
    if (search.ofOtherVersion > std::exchange(m_ofOtherVersion, search.ofOtherVersion))
        sentences << tr("Unsaved work of another version of Marlowen is kept for that version.");
    if (search.unreadable > 0)
        sentences << tr("Unsaved work of an earlier window could not be read and was removed.");
    if (!sentences.isEmpty())
        emit said(sentences.join(QLatin1Char(' ')), sentenceMs);
}

/// One after the other on another thread: a large relief takes a second or two.
void RecoveryController::_makeThumbnails()
{
    QThreadPool::globalInstance()->start(
        [found = m_found, self = QPointer<RecoveryController>(this)] {
            for (const FoundWork &work : found) {
                const QImage picture = foundThumbnail(work.folder, RecoveryPage::thumbnailSide * 2);
                QMetaObject::invokeMethod(qApp, [self, folder = work.folder, picture] {
                    if (self)
                        self->m_parts.page->setThumbnail(folder, picture);
                });
            }
        });
}

void RecoveryController::setupControls(CommandSet &commands) const
{
    commands["restoreWork"]->setEnabled(hasWork());
}

void RecoveryController::_restore(const QString &folder)
{
    if (dialogsOpen() || !m_parts.mayLoseWork())
        return;
    Result<RecoveredWork> restored = [&] {
        ProgressBox progress(tr("Restoring the work"), m_window);
        return restoreWork(folder, progress);
    }();
    if (!restored) {
        // An empty sentence means cancelled.
        if (!restored.failure().sentence.isEmpty())
            showFailure(m_window, restored.failure());
        find();
        return;
    }
    RecoveredWork work = restored.take();
    const bool damaged = work.damaged;
    m_journal.takeOver(std::move(work));
    m_found.removeIf([&folder](const FoundWork &each) { return each.folder == folder; });
    m_parts.page->showWork(m_found);
    _makeThumbnails();
    emit listChanged();
    emit said(damaged ? tr("Restored. The last steps could not be read.") : tr("Restored."), 5000);
}

void RecoveryController::_discard(const QString &folder)
{
    if (dialogsOpen())
        return;
    QMessageBox box(QMessageBox::Question, QString::fromLatin1("Marlowen"),
                    tr("Delete this unsaved work permanently?"), QMessageBox::Cancel, m_window);
    QPushButton *discard = box.addButton(tr("Discard"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() != discard)
        return;
    if (!discardWork(folder))
        showFailure(m_window,
                    {tr("Discard Failed"), tr("The unsaved work cannot be deleted now.")});
    if (!find())
        emit pageDone();
}

void RecoveryController::_showState(bool on, const QString &reason)
{
    if (on)
        return emit said(tr("Unsaved work is recorded again."), 5000);
    logWarning() << "The recovery journal is off: " << reason << "\n";
    logFlush();
    emit said(tr("Unsaved work is not recorded now. %1").arg(asSentence(reason)), 0);
}

bool RecoveryController::leaveForNextStart()
{
    m_left = m_journal.waitUntilSafe(longestWait);
    return m_left;
}

void RecoveryController::windowCloses()
{
    m_journal.end(m_left);
}

} // namespace marlowen

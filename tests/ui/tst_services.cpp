#include "recovery/recoveryjournal.h"
#include "relief/grid/relief.h"
#include "ui/commandset.h"
#include "ui/controllers/recoverycontroller.h"
#include "ui/help/helpwindow.h"
#include "ui/help/keylist.h"
#include "ui/help/whatsthis.h"
#include "ui/pages/toolspage.h"
#include "ui/recoverypage.h"
#include "ui/ribbon/ribbonmainwindow.h"
#include "ui/windowparts.h"
#include "workbench/workbench.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;
using namespace std::chrono_literals;

namespace {

/// Work of a window that is gone: a dot on flat ground.
void leaveWork(const QString &file)
{
    Workbench bench;
    RecoveryJournal journal(bench);
    auto relief = std::make_unique<Relief>(60, 40);
    std::fill_n(relief->heights().data(), relief->cells(), 5.0F);
    bench.take(std::move(relief), file);
    bench.engine().beginStroke(bench.tool, {0.0, 0.0});
    bench.engine().endStroke({0.0, 0.0});
    bench.strokeEnded();
    QVERIFY(journal.waitUntilSafe(10s));
}

QPushButton *buttonOf(QWidget &page, const char *text)
{
    for (auto *button : page.findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String(text) && !button->isHidden())
            return button;
    }
    return nullptr;
}

/// Presses a button of the box that comes up next.
void answerNextBox(const char *text)
{
    QTimer::singleShot(100, qApp, [text] {
        QWidget *box = QApplication::activeModalWidget();
        QVERIFY(box);
        QTest::mouseClick(buttonOf(*box, text), Qt::LeftButton);
    });
}

void leaveJournal(const QString &name, const JournalHead &head, const QByteArray &rest)
{
    const QString folder = recoveryRoot() + QLatin1Char('/') + name;
    QFile journal(folder + QStringLiteral("/journal"));
    QVERIFY(QDir().mkpath(folder) && journal.open(QIODevice::WriteOnly));
    journal.write(reinterpret_cast<const char *>(&head), sizeof head);
    journal.write(rest);
}

} // namespace

class TestServices : public QObject
{
    Q_OBJECT

private slots:
    void leftWorkIsListedRestoredOrDiscarded();
    void theManualIsShownAndSearched();
    void everyShortcutIsInTheListOfKeys();
    void tipsExplainWhatIsClicked();
};

void TestServices::leftWorkIsListedRestoredOrDiscarded()
{
    leaveWork(QStringLiteral("/a/one.scp"));
    leaveWork(QString());
    JournalHead newer;
    ++newer.version;
    leaveJournal(QStringLiteral("window-cut"), {}, "the begi");
    leaveJournal(QStringLiteral("window-new"), newer, "anything");
    QWidget window;
    Workbench bench;
    RecoveryPage page(&window);
    bool free = false;
    RecoveryController recovery(bench, {&page, [&free] { return free; }}, &window);
    QSignalSpy done(&recovery, &RecoveryController::pageDone);
    QSignalSpy said(&recovery, &RecoveryController::said);
    QVERIFY(recovery.find() && recovery.find());
    QCOMPARE(said.size(), 1);
    QVERIFY(said[0][0].toString().contains(QStringLiteral("another version")));
    QVERIFY(said[0][0].toString().contains(QStringLiteral("could not be read")));
    window.show();

    // The guard of unsaved work says no.
    QTest::mouseClick(buttonOf(page, "Restore"), Qt::LeftButton);
    QVERIFY(!bench.relief());
    free = true;
    QTest::mouseClick(buttonOf(page, "Restore"), Qt::LeftButton);
    QVERIFY(bench.relief() && bench.isModified() && bench.history().canUndo());
    QVERIFY(recovery.hasWork());

    answerNextBox("Cancel");
    QTest::mouseClick(buttonOf(page, "Discard"), Qt::LeftButton);
    QVERIFY(recovery.hasWork());
    answerNextBox("Discard");
    QTest::mouseClick(buttonOf(page, "Discard"), Qt::LeftButton);
    QVERIFY(!recovery.hasWork());
    QCOMPARE(done.size(), 1);

    // Restored work is recorded further, until the window closes.
    QVERIFY(recovery.leaveForNextStart());
    recovery.windowCloses();
    QCOMPARE(findWork(recoveryRoot()).size(), 1);
}

void TestServices::theManualIsShownAndSearched()
{
    QWidget window;
    CommandSet commands(&window);
    addWindowCommands(commands);
    HelpWindow help(commands, &window);
    auto *chapters = help.findChild<QListWidget *>();
    QVERIFY(chapters->findItems(QStringLiteral("Sculpting"), Qt::MatchExactly).size() == 1);
    QCOMPARE(chapters->item(chapters->count() - 1)->text(), QStringLiteral("All keys"));
    auto *text = help.findChild<QTextBrowser *>();
    auto *field = help.findChild<QLineEdit *>();
    QTest::keyClicks(field, QStringLiteral("brush"));
    const int first = text->textCursor().position();
    QCOMPARE(text->textCursor().selectedText().toLower(), QStringLiteral("brush"));
    QVERIFY(text->extraSelections().size() > 1);
    QTest::keyClick(field, Qt::Key_Return);
    QVERIFY(text->textCursor().position() > first);
    field->setText(QStringLiteral("no such words"));
    QVERIFY(text->extraSelections().isEmpty());
}

void TestServices::everyShortcutIsInTheListOfKeys()
{
    RibbonMainWindow window;
    CommandSet commands(&window);
    addWindowCommands(commands);
    ToolActions tools(commands, nullptr);
    const QString list = keyChapter(commands).remove(QLatin1Char('\\'));
    QList<QKeySequence> keys;
    for (const QAction *action : window.findChildren<QAction *>())
        keys += action->shortcuts();
    for (const QShortcut *shortcut : window.findChildren<QShortcut *>())
        keys += shortcut->keys();
    QVERIFY(keys.size() > 20);
    for (const QKeySequence &key : keys)
        QVERIFY2(list.contains(key.toString(QKeySequence::NativeText)), qPrintable(key.toString()));
}

void TestServices::tipsExplainWhatIsClicked()
{
    QWidget window;
    QWidget group(&window);
    QLabel label(&group);
    group.setToolTip(QStringLiteral("what this is"));
    for (QWidget *widget : {static_cast<QWidget *>(&group), static_cast<QWidget *>(&label)})
        widget->resize(50, 50);
    window.resize(100, 100);
    window.show();
    const auto asks = [&window](QPoint place) {
        QHelpEvent event(QEvent::QueryWhatsThis, place, window.mapToGlobal(place));
        return explainFromTips(window, event) && event.isAccepted();
    };
    QVERIFY(asks({10, 10}));
    QVERIFY(!asks({80, 80}));
}

QTEST_MAIN(TestServices)
#include "tst_services.moc"

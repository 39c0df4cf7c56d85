#include "pictures.h"
#include "relief/history/undoevents.h"
#include "relief/tools/tool.h"

#include <QAction>
#include <QTest>

using namespace marlowen;

namespace {

/// Writes its name into a journal when it is undone or redone, and accounts for any size.
class JournalEvent : public SculptUndoEvent
{
public:
    JournalEvent(QStringList &journal, QString entry, uint32_t bytes)
        : m_journal(journal)
        , m_name(std::move(entry))
        , m_bytes(bytes)
    {
    }
    ~JournalEvent() override { m_journal << u'~' + m_name; }
    void undo() override { m_journal << u'-' + m_name; }
    void redo() override { m_journal << u'+' + m_name; }
    uint32_t size() const override { return m_bytes; }

private:
    QStringList &m_journal;
    QString m_name;
    uint32_t m_bytes;
};

/// A stack of journal events named a, b, c ...
struct Journal
{
    QStringList lines; ///< outlives the stack, whose events write to it as they go
    SculptUndo undo;

    void push(const QString &name, uint32_t bytes = 10)
    {
        undo.push(std::make_unique<JournalEvent>(lines, name, bytes));
    }
    void step(const QString &name, uint32_t bytes = 10)
    {
        push(name, bytes);
        undo.markGroupEnd();
    }
    QString take() { return std::exchange(lines, {}).join(u' '); }
};

Patch patchOf(const Relief &relief, const GridLayer &layer, const QRect &rect)
{
    return copyPatch(layer, relief.width(), rect);
}

} // namespace

class TestUndo : public QObject
{
    Q_OBJECT

private slots:
    void groupsAreSteps();
    void pushDropsTheRedoTail();
    void oldestIsTrimmed();
    void singleEventBeyondTheLimit();
    void sizesBeyond32Bits();
    void actionsFollowTheStack();
    void patchRestoresItsRectangleOnly();
    void untouchedPatchesClearTheLayer();
    void modifyEvent();
    void resizeEventDropsAStroke();
};

void TestUndo::groupsAreSteps()
{
    Journal journal;
    journal.undo.undo();
    journal.undo.redo();
    journal.undo.markGroupEnd();
    QCOMPARE(journal.undo.cursor(), 0);

    journal.step("a");
    journal.push("b");
    journal.step("c");
    journal.undo.undo();
    QCOMPARE(journal.take(), "-c -b");
    QCOMPARE(journal.undo.cursor(), 1);
    journal.undo.undo();
    journal.undo.undo();
    QCOMPARE(journal.take(), "-a");
    journal.undo.redo();
    QCOMPARE(journal.take(), "+a");
    journal.undo.redo();
    journal.undo.redo();
    QCOMPARE(journal.take(), "+b +c");
    QCOMPARE(journal.undo.cursor(), 3);

    // An open group at the top is a separate step.
    journal.push("d");
    journal.push("e");
    journal.undo.undo();
    journal.undo.redo();
    QCOMPARE(journal.take(), "-e -d +d +e");
}

void TestUndo::pushDropsTheRedoTail()
{
    Journal journal;
    journal.step("a", 100);
    journal.step("b", 20);
    journal.step("c", 3);
    journal.undo.undo();
    journal.undo.undo();
    QCOMPARE(journal.undo.totalSize(), 123U);
    journal.take();
    journal.step("d", 4000);
    QCOMPARE(journal.take(), "~c ~b");
    QCOMPARE(journal.undo.totalSize(), 4100U);
    QCOMPARE(journal.undo.count(), 2);
    QVERIFY(!journal.undo.canRedo());
    journal.undo.clear();
    QCOMPARE(journal.undo.totalSize(), 0U);
    QVERIFY(!journal.undo.canUndo());
}

void TestUndo::oldestIsTrimmed()
{
    Journal journal;
    journal.step("a", 100000000);
    journal.step("b", 100000000);
    journal.step("c", 100000000);
    QCOMPARE(journal.take(), ""); // exactly the limit is within it
    journal.step("d", 1);
    QCOMPARE(journal.take(), "~a");
    QCOMPARE(journal.undo.cursor(), 3);
    QCOMPARE(journal.undo.totalSize(), 200000001U);
    // The tail goes before anything is trimmed.
    journal.undo.undo();
    journal.undo.undo();
    journal.take();
    journal.step("e", 200000000);
    QCOMPARE(journal.take(), "~d ~c");
    QCOMPARE(journal.undo.totalSize(), 300000000U);
}

void TestUndo::singleEventBeyondTheLimit()
{
    Journal journal;
    journal.step("a");
    journal.step("b", SculptUndo::byteLimit + 1);
    QCOMPARE(journal.take(), "~a ~b");
    QCOMPARE(journal.undo.count(), 0);
    QCOMPARE(journal.undo.totalSize(), 0U);
    QVERIFY(!journal.undo.canUndo());
    journal.undo.undo();
    QCOMPARE(journal.take(), "");
}

void TestUndo::sizesBeyond32Bits()
{
    // The sum of both would not fit 32 bits and must not pass for a small one.
    Journal journal;
    journal.step("a", 1000);
    journal.step("b", UINT32_MAX - 500);
    QCOMPARE(journal.undo.count(), 0);
    QCOMPARE(journal.undo.totalSize(), 0U);

    // So must not a resize of a relief whose layers are larger than 4 GB. Its old layers are never
    // written to, so they take no memory.
    Relief relief(2, 2);
    SculptResizeEvent::State before;
    before.grid.width = 1 << 15;
    before.grid.height = 1 << 14;
    QCOMPARE(SculptResizeEvent(relief, std::move(before)).size(), UINT32_MAX);
}

void TestUndo::actionsFollowTheStack()
{
    Journal journal;
    {
        QAction undoAction;
        QAction redoAction;
        const auto enabled = [&] {
            return std::pair(undoAction.isEnabled(), redoAction.isEnabled());
        };
        journal.step("a");
        journal.undo.setActions(&undoAction, &redoAction);
        QCOMPARE(enabled(), std::pair(true, false));
        journal.undo.undo();
        QCOMPARE(enabled(), std::pair(false, true));
        journal.undo.redo();
        QCOMPARE(enabled(), std::pair(true, false));
        journal.undo.undo();
        journal.step("b");
        QCOMPARE(enabled(), std::pair(true, false));
        journal.step("c", SculptUndo::byteLimit + 1);
        QCOMPARE(enabled(), std::pair(false, false));
        journal.step("d");
        journal.undo.clear();
        QCOMPARE(enabled(), std::pair(false, false));
    }
    journal.step("e"); // the actions are gone
    journal.undo.undo();
    QCOMPARE(journal.undo.cursor(), 0);
}

void TestUndo::patchRestoresItsRectangleOnly()
{
    const auto relief = pictures::relief({"12345", "67891", "23456"});
    const QRegion region = QRegion(1, 0, 2, 1) + QRegion(3, 1, 1, 1);
    const Patch patch = patchOf(*relief, relief->heights(), region.boundingRect());
    QCOMPARE(patch.left, 1);
    QCOMPARE(patch.top, 0);
    QCOMPARE(patch.right, 4);
    QCOMPARE(patch.bottom, 2);
    const QList<float> values(patch.values.constData(), patch.values.constData() + patch.count());
    QCOMPARE(values, QList<float>({2, 3, 4, 7, 8, 9}));
    pictures::intoLayer({"00000", "00000", "00000"}, relief->heights());
    patch.pasteInto(relief->heights(), relief->width());
    QCOMPARE(relief->heightAt(3, 1), 9.0F);
    QCOMPARE(pictures::ofLayer(*relief, relief->heights()),
             QStringList({".###.", ".###.", "....."}));
    copyPatch(relief->heights(), relief->width(), {}).pasteInto(relief->heights(), relief->width());
    QCOMPARE(relief->heightAt(3, 1), 9.0F);
}

void TestUndo::untouchedPatchesClearTheLayer()
{
    Relief relief(4, 3);
    const Patch whole = patchOf(relief, relief.maskLayer(), relief.rect());
    const Patch part = patchOf(relief, relief.maskLayer(), {1, 1, 2, 1});
    pictures::intoLayer({"1111", "1111", "1111"}, relief.maskLayer());
    part.pasteInto(relief.maskLayer(), relief.width());
    QCOMPARE(pictures::ofLayer(relief, relief.maskLayer()), QStringList({"####", "#..#", "####"}));
    whole.pasteInto(relief.maskLayer(), relief.width());
    QVERIFY(!relief.maskLayer().written());
}

void TestUndo::modifyEvent()
{
    const auto relief = pictures::relief({"1234", "5678"});
    const QRect rect(1, 0, 2, 2);
    Patch before = patchOf(*relief, relief->heights(), rect);
    pictures::intoLayer({"1994", "5998"}, relief->heights());
    SculptModifyEvent event(*relief, std::move(before), patchOf(*relief, relief->heights(), rect));
    relief->frameRegion = QRegion(0, 0, 1, 1);
    relief->heightsChanged = false;
    relief->appearanceChanged = false;
    event.undo();
    QCOMPARE(relief->heightAt(2, 1), 7.0F);
    QCOMPARE(relief->frameRegion, QRegion(0, 0, 1, 1) + rect);
    QVERIFY(relief->heightsChanged);
    QVERIFY(!relief->appearanceChanged);
    event.redo();
    QCOMPARE(relief->heightAt(2, 1), 9.0F);
    QCOMPARE(relief->heightAt(3, 1), 8.0F);
}

void TestUndo::resizeEventDropsAStroke()
{
    Relief relief(4, 4);
    Relief::Grid small{2, 2, GridLayer(4), GridLayer(4), GridLayer(4), GridLayer(4)};
    SculptResizeEvent event(relief, {relief.replaceGrid(std::move(small)), 0.0, 0.0, false});
    relief.setTool(std::make_unique<Tool>());
    relief.strokeRegion = relief.rect();
    event.undo();
    QVERIFY(!relief.tool());
    QVERIFY(relief.strokeRegion.isEmpty());
    QCOMPARE(relief.rect(), QRect(0, 0, 4, 4));
}

QTEST_MAIN(TestUndo)
#include "tst_undo.moc"

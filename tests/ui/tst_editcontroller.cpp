#include "base/qevsettings.h"
#include "relief/grid/physicalsize.h"
#include "ribbonstage.h"
#include "ui/controllers/editcontroller.h"
#include "workbench/workbench.h"

/// The commands that edit the whole relief, without the window.
class TestEditController : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QevSettings().clear();
        m_stage = std::make_unique<Stage>();
    }
    void cleanup() { m_stage.reset(); }

    void sizesFollowTheLock_data();
    void sizesFollowTheLock();
    void sizeIsOneStep();
    void askedDepthHoldsAfterResampling();
    void tooLargeASizeIsRefused();
    void cropNeedsItsToolAndAnOutline();

private:
    struct Stage
    {
        Stage()
        {
            window.show();
            bench.take(flat());
        }

        QWidget window;
        Workbench bench;
        Ribbon ribbon;
        EditController edits{bench, {ribbon.pages.size, ribbon.pages.edit}, &window};
    };
    std::unique_ptr<Stage> m_stage;
};

void TestEditController::sizesFollowTheLock_data()
{
    QTest::addColumn<int>("lock");
    QTest::addColumn<int>("axis");
    QTest::addColumn<double>("wanted");
    QTest::addColumn<QList<double>>("sizes");
    QTest::newRow("xy: x") << int(AspectLock::XyLocked) << 0 << 8.0 << QList<double>{8, 6, 1};
    QTest::newRow("xy: z") << int(AspectLock::XyLocked) << 2 << 2.0 << QList<double>{4, 3, 2};
    QTest::newRow("free") << int(AspectLock::Free) << 1 << 6.0 << QList<double>{4, 6, 1};
    QTest::newRow("all: z") << int(AspectLock::AllLocked) << 2 << 0.5 << QList<double>{2, 1.5, 0.5};
    QTest::newRow("all: y") << int(AspectLock::AllLocked) << 1 << 9.0 << QList<double>{12, 9, 3};
}

void TestEditController::sizesFollowTheLock()
{
    QFETCH(int, lock);
    QFETCH(int, axis);
    QFETCH(double, wanted);
    QFETCH(QList<double>, sizes);
    const SizeWish wish = lockedSizes({4, 3, 1}, axis, wanted, AspectLock(lock));
    QCOMPARE(QList<double>(wish.begin(), wish.end()), sizes);
}

void TestEditController::sizeIsOneStep()
{
    const double inches = side / cellsPerInch;
    m_stage->edits.applySize({2 * inches, 2 * inches, 8.0 / cellsPerInch});
    QCOMPARE(m_stage->bench.relief()->width(), 2 * side);
    QCOMPARE(m_stage->bench.relief()->zScale, 2.0);
    QCOMPARE(m_stage->bench.history().stepToUndo().size(), size_t(2));
    m_stage->bench.undo();
    QCOMPARE(m_stage->bench.relief()->width(), side);
    QCOMPARE(m_stage->bench.relief()->zScale, 1.0);
    QVERIFY(!m_stage->bench.isModified());
}

void TestEditController::askedDepthHoldsAfterResampling()
{
    auto needle = flat();
    needle->heights().data()[needle->index(side / 2, side / 2)] = 60.0F;
    m_stage->bench.take(std::move(needle));
    const double inches = side / cellsPerInch / 4;
    m_stage->edits.applySize({inches, inches, 0.1});
    const double peak = m_stage->bench.changes().heightRange().maximum;
    QVERIFY(peak < 60.0);
    QCOMPARE(peak * m_stage->bench.relief()->zScale / cellsPerInch, 0.1);
}

void TestEditController::tooLargeASizeIsRefused()
{
    PersonAtHand person;
    m_stage->edits.applySize({40.0, 40.0, 1.0});
    QCOMPARE(person.titles, QStringList{QStringLiteral("Size")});
    QCOMPARE(person.sentences[0],
             QStringLiteral("That would make the pattern 1600.0 square inches. The largest "
                            "Marlowen can work with is 1000 square inches."));
    QCOMPARE(m_stage->bench.relief()->width(), side);
    QVERIFY(!m_stage->bench.isModified());
}

void TestEditController::cropNeedsItsToolAndAnOutline()
{
    const QList<QPointF> outline{{-10, -10}, {10, 10}};
    m_stage->bench.tool.type = Tool::Deposit;
    QVERIFY(!m_stage->edits.applyCrop(outline));
    m_stage->bench.tool.type = Tool::Crop;
    QVERIFY(!m_stage->edits.applyCrop({}));
    m_stage->edits.setupControls(m_stage->ribbon.commands, false);
    QVERIFY(!m_stage->ribbon.commands["cropApply"]->isEnabled());
    m_stage->edits.setupControls(m_stage->ribbon.commands, true);
    QVERIFY(m_stage->ribbon.commands["cropApply"]->isEnabled());
    QVERIFY(m_stage->edits.applyCrop(outline));
    QCOMPARE(m_stage->bench.relief()->heightAt(2, 2), 0.0F);
    QCOMPARE(m_stage->bench.relief()->heightAt(side / 2, side / 2), 4.0F);
}

QTEST_MAIN(TestEditController)
#include "tst_editcontroller.moc"

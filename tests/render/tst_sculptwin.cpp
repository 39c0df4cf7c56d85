#include "base/datafolder.h"
#include "base/qevsettings.h"
#include "base/sessionlog.h"
#include "relief/operations/operations.h"
#include "relief/tools/alphabrush.h"
#include "render/engines/shader.h"
#include "sculptbench.h"

#include <QFile>
#include <QProcess>

using namespace marlowen;

namespace {

/// Bytes and passes so far, to see what an action cost.
struct Work
{
    ReliefView::Counters counters;
    quint64 vertexBytes;
    quint64 indexBytes;

    explicit Work(const ReliefView &view)
        : counters(view.counters())
        , vertexBytes(view.shader()->uploadedVertexBytes())
        , indexBytes(view.shader()->uploadedIndexBytes())
    {
    }
};

/// Share of pixels that differ by more than a few grey levels.
double difference(const QImage &a, const QImage &b)
{
    int differing = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 6)
                ++differing;
    return differing / double(a.width() * a.height());
}

/// A view whose first drawing engines fail.
class FailingWin : public SculptWin
{
public:
    int failures = 1;

protected:
    std::unique_ptr<Shader> createShader(bool legacy) override
    {
        if (failures-- > 0)
            throw "Shader compile failed...aborting!";
        return SculptWin::createShader(legacy);
    }
};

} // namespace

// The pictures of the 3D view, and their cost.
class SculptWinTest : public QObject
{
    Q_OBJECT

private slots:
    void drawingLogsNoErrors()
    {
        SculptBench b(medal(60, 40));
        b.moveTo(b.centre());
        b.paint();
        logFlush();
        QFile log(QStringLiteral("%1/marlowen3_%2.log")
                      .arg(dataFolder())
                      .arg(QCoreApplication::applicationPid(), 0, 16));
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QByteArray text = log.readAll();
        QVERIFY(text.contains("drawing engine\n"));
        QVERIFY2(!text.contains("OpenGL error"), text.constData());
    }

    void unchangedPaintsCostNothing()
    {
        KeptView<SculptWin>::drop();
        SculptBench b(medal(200, 150));
        const QImage first = b.paint();
        const Work before(b.view);
        QCOMPARE(b.paint(), first);
        b.moveTo(b.centre() + QPoint(20, 10));
        const QImage hovered = b.paint();
        b.moveTo(b.centre() - QPoint(20, 10));
        b.paint();
        b.view.refresh();
        b.paint();
        const Work after(b.view);
        QCOMPARE(after.counters.pictures, before.counters.pictures);
        QCOMPARE(after.counters.fullRebuilds, 1);
        QCOMPARE(after.counters.partialRefreshes, 0);
        QCOMPARE(after.vertexBytes, before.vertexBytes);
        QVERIFY(after.counters.depthReads <= before.counters.depthReads + 1);
        QCOMPARE(b.view.gizmoPictures(), 1);
        const QPoint pointer = b.centre() + QPoint(20, 10);
        QVERIFY(b.colorAt(hovered, pointer).red() > b.colorAt(first, pointer).red() + 30);
    }

    void firstPictureHasTheCube()
    {
        const auto relief = medal(200, 150);
        SculptWin view;
        view.setRelief(relief.get());
        view.resize(480, 360);
        const QRect corner(0, 0, 150, 150);
        const QImage first = view.grabFramebuffer().copy(corner);
        QCOMPARE(first, view.grabFramebuffer().copy(corner));
    }

    void dabsRefreshTheirRectangle()
    {
        SculptBench b(medal(300, 200));
        b.tool.size = 0.3; // radius 10.8
        b.tool.strength = 1.0;
        const QPoint at = b.centre() + QPoint(40, -30);
        b.moveTo(at);
        b.paint();
        const Work before(b.view);
        b.press(at);
        b.paint();
        const Work after(b.view);
        QCOMPARE(after.counters.fullRebuilds, before.counters.fullRebuilds);
        QCOMPARE(after.counters.partialRefreshes, before.counters.partialRefreshes + 1);
        const qint64 vertices =
            after.counters.refreshedVertices - before.counters.refreshedVertices;
        QVERIFY(vertices > 22 * 22 && vertices <= 26 * 26);
        QCOMPARE(after.vertexBytes - before.vertexBytes, quint64(vertices) * 28);
        QCOMPARE(after.indexBytes, before.indexBytes);
        b.release(at);
        const QImage refreshed = b.paint();
        QVERIFY(b.view.pictureComplete());
        b.view.setRelief(b.relief.get());
        QTRY_VERIFY((b.paint(), b.view.pictureComplete()));
        QCOMPARE(b.paint(), refreshed);
    }

    void detailFollowsTheZoom()
    {
        SculptBench b(medal(1200, 900), {300, 225});
        b.view.zoomAll();
        b.paint();
        QCOMPARE(b.view.drawRegion(), b.relief->rect());
        QCOMPARE(b.view.lodStep(), 4);
        for (int i = 0; i < 14; ++i)
            b.wheel(b.centre(), {0, -120});
        b.paint();
        QCOMPARE(b.view.lodStep(), 1);
        QVERIFY(b.view.drawRegion().width() < 600);
        const Work before(b.view);
        // A pan within the margin needs nothing new, a long one new vertices.
        b.drag({b.centre(), b.centre() + QPoint(10, 0)}, Qt::MiddleButton, Qt::ShiftModifier);
        b.paint();
        QCOMPARE(Work(b.view).vertexBytes, before.vertexBytes);
        b.drag({b.centre(), b.centre() + QPoint(120, 0)}, Qt::MiddleButton, Qt::ShiftModifier);
        b.paint();
        QVERIFY(Work(b.view).vertexBytes > before.vertexBytes);
    }

    void wholeReliefChanges()
    {
        SculptBench b(medal(200, 150));
        const QImage first = b.paint();
        setZScale(*b.relief, 2.0, &b.undo);
        b.view.changes()->notify();
        const QImage taller = b.paint();
        QVERIFY(difference(first, taller) > 0.02);
        b.undo.undo();
        QCOMPARE(b.paint(), first);
        QVERIFY(::resize(*b.relief, 100, 300, &b.undo));
        b.paint();
        QCOMPARE(b.view.drawRegion(), QRect(0, 0, 100, 300));
        QCOMPARE(b.view.shader()->size, 300);
    }

    void picksFindTheCell()
    {
        auto relief = std::make_unique<Relief>(200, 100);
        std::fill_n(relief->heights().data(), relief->cells(), 1.0F);
        // A tower in an early column of an early row; row 0 lies at the bottom of the picture.
        for (int y = 10; y < 30; ++y)
            for (int x = 20; x < 40; ++x)
                relief->heights().data()[relief->index(x, y)] = 30.0F;
        SculptBench b(std::move(relief), {400, 300});
        const auto at = [&](int column, int row) {
            return b.view.pick(QPoint(200 + column - 100, 150 - 1 - (row - 50)));
        };
        QVERIFY(std::abs(at(30, 20).point.z - 30) < 0.1);
        QVERIFY(std::abs(at(30, 20).point.x - (30 - 100)) <= 1.0);
        QVERIFY(std::abs(at(30, 20).point.y - (20 - 50)) <= 1.0);
        QVERIFY(std::abs(at(30, 80).point.z - 1) < 0.1);
        QVERIFY(at(30, 80).hit);
        QVERIFY(!at(30, 130).hit);
        QVERIFY(!b.view.pick({-5, 20}).hit && !b.view.pick({5000, 5000}).hit);
        // From the side the tower's wall is what the pointer meets.
        b.view.setRotation(rotationAbout({1, 0, 0}, -80));
        const auto side = b.view.pick(QPoint(200 + 30 - 100, 150 - 18));
        QVERIFY(side.hit);
        QVERIFY(side.point.z > 5 && side.point.z < 29);
    }

    void materialAboveTheOldRangeIsSeen()
    {
        auto relief = std::make_unique<Relief>(200, 200);
        std::fill_n(relief->heights().data(), relief->cells(), 1.0F);
        SculptBench b(std::move(relief));
        b.view.pick(b.centre());
        const QRect block(80, 80, 40, 40);
        for (int y = block.top(); y <= block.bottom(); ++y)
            std::fill_n(b.relief->heights().data() + b.relief->index(80, y), 40, 5000.0F);
        b.relief->frameRegion = block;
        b.relief->heightsChanged = true;
        b.view.changes()->notify();
        const QImage image = b.paint();
        QVERIFY(b.colorAt(image, b.centre()) != b.colorAt(image, {5, 355}));
        const auto at = b.view.pick(b.centre());
        QVERIFY(at.hit && std::abs(at.point.z - 5000) < 1);
    }

    void symmetryIsDrawn()
    {
        SculptBench b(medal(240, 180));
        b.moveTo(b.centre() + QPoint(50, 20));
        const QImage plain = b.paint();
        b.relief->symmetryX = true;
        b.view.refresh();
        const QImage mirrored = b.paint();
        const auto redder = [&](QPoint at) {
            return b.colorAt(mirrored, at).red() > b.colorAt(plain, at).red() + 20;
        };
        QVERIFY(redder(b.centre() + QPoint(-50, 20)));
        QVERIFY(!redder(b.centre() + QPoint(-50, -40)));
        int axis = 0;
        for (int y = -60; y < 60; ++y)
            axis += redder(QPoint(240, 180 + y)) || redder(QPoint(239, 180 + y)) ? 1 : 0;
        QVERIFY(axis > 30);
    }

    void viewsShareTheChanges()
    {
        SculptBench b(medal(240, 180));
        ReliefChanges changes;
        SculptWin other;
        other.setChanges(&changes);
        b.view.setChanges(&changes);
        b.view.setRelief(b.relief.get());
        other.setRelief(b.relief.get());
        other.resize(480, 360);
        other.show();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        other.grabFramebuffer();
        b.paint();
        b.tool.strength = 1.0;
        b.drag({b.centre(), b.centre() + QPoint(50, 20)});
        b.view.setRelief(b.relief.get());
        b.moveTo({479, 359}); // no footprint
        const QImage expected = b.paint();
        QCOMPARE(
            other.grabFramebuffer().convertToFormat(QImage::Format_RGB32).copy(200, 0, 280, 360),
            expected.copy(200, 0, 280, 360));
    }

    void movesToAnotherWindow()
    {
        auto b = std::make_unique<SculptBench>(medal(240, 180));
        b->view.setRotation(rotationAbout({1, 0, 0}, -30));
        const QImage before = b->paint();
        QWidget frame;
        frame.resize(700, 600);
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        b->view.setParent(&frame);
        b->view.show();
        QTRY_VERIFY(b->view.isValid());
        // But for the frame that a view with the keyboard has.
        const QRect inside = before.rect().adjusted(2, 2, -2, -2);
        QCOMPARE(b->paint().copy(inside), before.copy(inside));
        b->drag({b->centre(), b->centre() + QPoint(20, 0)});
        QCOMPARE(b->undo.count(), 1);
        b->view.setParent(nullptr);
    }

    void alphaFootprint()
    {
        SculptBench b(medal(240, 180));
        b.tool.size = 0.8;
        b.moveTo(b.centre());
        const QImage round = b.paint();
        std::vector<float> half(64 * 64, 0.0F);
        std::fill_n(half.begin(), half.size() / 2, 1.0F); // its first rows: low y, low in the view
        AlphaBrush::instance().setImage({half.data(), 64, 64});
        b.view.refresh();
        const QImage image = b.paint();
        AlphaBrush::instance().setImage({});
        QVERIFY(image != round);
        const QPoint low = b.centre() + QPoint(15, 12);
        const QPoint high = b.centre() + QPoint(15, -12);
        const auto redness = [&](QPoint at) {
            return b.colorAt(image, at).red() - b.colorAt(image, at).blue();
        };
        QVERIFY(redness(low) > 80);
        QVERIFY(redness(high) < 40);
    }

    void oddReliefsAndSizes_data()
    {
        QTest::addColumn<QSize>("relief");
        QTest::addColumn<QSize>("widget");
        QTest::newRow("1 x 1") << QSize(1, 1) << QSize(300, 200);
        QTest::newRow("1 x 4000") << QSize(1, 4000) << QSize(300, 200);
        QTest::newRow("4000 x 1") << QSize(4000, 1) << QSize(300, 200);
        QTest::newRow("one pixel") << QSize(200, 150) << QSize(1, 1);
    }

    void oddReliefsAndSizes()
    {
        QFETCH(QSize, relief);
        QFETCH(QSize, widget);
        SculptBench b(std::make_unique<Relief>(relief.width(), relief.height()), widget);
        b.tool.keepTransparency = false;
        b.view.zoomAll();
        b.drag({b.centre(), b.centre() + QPoint(5, 5)});
        b.drag({b.centre(), b.centre() + QPoint(40, 5)}, Qt::MiddleButton);
        b.wheel({0, 0}, {0, 5000});
        b.doubleClick({0, 0});
        b.view.resize(0, 0);
        b.paint();
        b.moveTo({0, 0});
        b.view.resize(widget);
        b.paint();
        b.view.setRelief(nullptr);
        b.drag({b.centre(), b.centre() + QPoint(5, 5)});
        b.paint();
        QVERIFY(b.view.message().isEmpty());
    }

    void failingEngines()
    {
        const auto relief = medal(200, 150);
        FailingWin fallback;
        FailingWin failing;
        failing.failures = 2;
        for (FailingWin *view : {&fallback, &failing}) {
            view->resize(300, 200);
            view->setRelief(relief.get());
            view->show();
            QVERIFY(QTest::qWaitForWindowExposed(view));
        }
        QVERIFY(fallback.message().isEmpty() && fallback.shader());
        QCOMPARE(fallback.shader()->uploadedVertexBytes(), quint64(0)); // the legacy engine
        fallback.grabFramebuffer();
        QCOMPARE(fallback.counters().pictures, 1);
        failing.grabFramebuffer();
        QVERIFY(failing.message().contains("graphics driver"));
        QVERIFY(!failing.pick({150, 100}).hit);
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(150, 100), QPointF(150, 100),
                          Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&failing, &press);
    }

    void threeFacetsAPixelAreAllDrawn()
    {
        const double ratio = qApp->devicePixelRatio();
        SculptBench b(medal(qRound(576 * ratio), qRound(432 * ratio)));
        b.view.zoomAll();
        QTRY_VERIFY((b.paint(), b.view.pictureComplete()));
        const QSize cells = b.relief->rect().size();
        QCOMPARE(b.view.shader()->drawn.count,
                 uint32_t(2 * cells.width() + 1) * uint32_t(cells.height() - 1));
    }

    // The ratio is fixed when a program starts: run these in a second one.
    void pixelsOfOneAndAHalf()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_SCALE_FACTOR", "1.5");
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(),
                      {"picksFindTheCell", "dabsRefreshTheirRectangle",
                       "unchangedPaintsCostNothing", "threeFacetsAPixelAreAllDrawn"});
        QVERIFY(process.waitForFinished(60000));
        QVERIFY2(process.exitCode() == 0, process.readAllStandardOutput());
    }

    void cleanupTestCase() { KeptView<SculptWin>::drop(); }
};

QTEST_MAIN(SculptWinTest)
#include "tst_sculptwin.moc"

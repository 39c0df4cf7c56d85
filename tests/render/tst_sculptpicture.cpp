#include "render/engines/vboshader.h"
#include "render/views/flatwin.h"
#include "sculptbench.h"

namespace {

/// A view that draws all facets of its relief, also those over no middle of a pixel.
template <typename View, typename Engine>
class AllFacets : public View
{
    class Strips : public Engine
    {
        bool drawsFacets() const override { return false; }
    };

    std::unique_ptr<Shader> createShader(bool) override { return std::make_unique<Strips>(); }
};

QImage pictureAtRest(ReliefView &&view, Relief &relief, const Quaternion &rotation)
{
    view.setRelief(&relief);
    view.setRotation(rotation);
    view.resize(KeptView<SculptWin>::usualSize);
    view.show();
    QImage picture;
    const auto isComplete = [&] {
        picture = view.grabFramebuffer();
        return view.pictureComplete();
    };
    return QTest::qWaitFor(isComplete) ? picture : QImage();
}

} // namespace

// How the picture of the 3D view is kept up to date without graphics hardware.
class SculptPictureTest : public QObject
{
    Q_OBJECT

private slots:
    void picturesAreFinishedAtRest()
    {
        SculptBench b(medal(240, 180));
        const QImage full = b.paint();
        QVERIFY(b.view.pictureComplete());
        b.wheel(b.centre(), {0, -120});
        b.wheel(b.centre(), {0, 107}); // not quite back
        const Camera there = b.view.camera();
        b.paint();
        QVERIFY(!b.view.pictureComplete());
        QTRY_VERIFY(b.view.pictureComplete());
        QCOMPARE(b.view.camera(), there);
        // A stroke draws every vertex, and is finished when the button goes up.
        b.drag({b.centre(), b.centre() + QPoint(20, 0)});
        b.undo.undo();
        b.view.zoomAll();
        b.paint();
        QVERIFY(b.view.pictureComplete());
        b.press(b.centre(), Qt::MiddleButton);
        b.moveTo(b.centre() + QPoint(9, 0));
        b.paint();
        QVERIFY(!b.view.pictureComplete());
        b.release(b.centre() + QPoint(9, 0));
        b.paint();
        QVERIFY(b.view.pictureComplete());
    }

    void partsOfThePictureAreDrawnAnew_data()
    {
        QTest::addColumn<QSize>("cells");
        QTest::addColumn<double>("tilt");
        QTest::newRow("several samples a pixel") << QSize(60, 45) << 50.0;
        QTest::newRow("small facets") << QSize(300, 220) << -50.0;
        QTest::newRow("from above") << QSize(300, 220) << 0.0;
        QTest::newRow("more facets than pixels") << QSize(560, 420) << 35.0;
    }
    void partsOfThePictureAreDrawnAnew()
    {
        QFETCH(const QSize, cells);
        QFETCH(const double, tilt);
        SculptBench b(medal(cells.width(), cells.height()));
        b.view.setRotation(rotationAbout({1, 0.4, 0.2}, tilt));
        QTRY_VERIFY((b.paint(), b.view.pictureComplete()));
        const int parts = b.view.counters().parts;
        // Pixels that are larger than cells may lie beyond the cells that change.
        for (int step = 0; step < 5; ++step) {
            const QImage before = b.paint();
            const QRect block(cells.width() / 2 + step, cells.height() * (step + 2) / 8,
                              cells.width() / 8, 6);
            for (int y = block.top(); y <= block.bottom(); ++y)
                std::fill_n(b.relief->heights().data() + b.relief->index(block.left(), y),
                            block.width(), 0.2F * static_cast<float>(cells.height()));
            b.relief->frameRegion = block;
            b.relief->heightsChanged = true;
            b.view.changes()->notify();
            const QImage part = b.paint();
            QCOMPARE(b.view.counters().parts, parts + step + 1);
            QVERIFY(part != before);
            b.view.setBackdrop(b.view.backdrop()); // all of it
            QTRY_VERIFY((b.paint(), b.view.pictureComplete()));
            QCOMPARE(part, b.paint());
        }
    }

    // Steep noise, so that many facets are seen from behind or hide others.
    void facetsOverNoPixelAreNotMissed()
    {
        const auto relief = medal(560, 420);
        for (qsizetype i = 0; i < relief->cells(); ++i)
            relief->heights().data()[i] *= 1.0F + 0.002F * static_cast<float>(i * i % 17);
        for (const double angle : {0.0, 50.0, -80.0}) {
            const Quaternion rotation = rotationAbout({1, 0.4, 0.2}, angle);
            const QImage picture = pictureAtRest(SculptWin(), *relief, rotation);
            QVERIFY(!picture.isNull());
            QCOMPARE(picture, pictureAtRest(AllFacets<SculptWin, VboShader>(), *relief, rotation));
        }
        const QImage picture = pictureAtRest(FlatWin(), *relief, {});
        QVERIFY(!picture.isNull());
        QCOMPARE(picture, pictureAtRest(AllFacets<FlatWin, VboShader2d>(), *relief, {}));
    }

    void cleanupTestCase() { KeptView<SculptWin>::drop(); }
};

QTEST_MAIN(SculptPictureTest)
#include "tst_sculptpicture.moc"

#include "render/views/glcanvas.h"
#include "sculptbench.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QScreen>
#include <QSignalSpy>

Q_DECLARE_METATYPE(GlCanvas::Way)

namespace {

/// Red with a blue lower left quarter.
class Flag : public GlCanvas
{
public:
    Flag() { resize(200, 100); }

    int paints = 0;
    QSize resized;

protected:
    void initializeGL() override {}
    void resizeGL(int width, int height) override { resized = {width, height}; }
    void paintGL() override
    {
        ++paints;
        QOpenGLFunctions &gl = *context()->functions();
        gl.glClearColor(1, 0, 0, 1);
        gl.glClear(GL_COLOR_BUFFER_BIT);
        gl.glEnable(GL_SCISSOR_TEST);
        gl.glScissor(0, 0, width() / 2, height() / 2);
        gl.glClearColor(0, 0, 1, 1);
        gl.glClear(GL_COLOR_BUFFER_BIT);
        gl.glDisable(GL_SCISSOR_TEST);
    }
};

bool showsFlag(const QImage &image)
{
    return image.pixelColor(10, 10) == QColor(Qt::red) &&
           image.pixelColor(10, image.height() - 10) == QColor(Qt::blue) &&
           image.pixelColor(image.width() - 10, image.height() - 10) == QColor(Qt::red);
}

} // namespace

class TestGlCanvas : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data()
    {
        QTest::addColumn<GlCanvas::Way>("way");
        QTest::newRow("composed") << GlCanvas::Way::Composed;
        QTest::newRow("read back") << GlCanvas::Way::ReadBack;
    }
    void cleanup() { GlCanvas::setWay(GlCanvas::Way::ByDriver); }

    void showsItsPictureAtEverySize()
    {
        QFETCH_GLOBAL(const GlCanvas::Way, way);
        GlCanvas::setWay(way);
        Flag flag;
        QVERIFY(!flag.isValid());
        flag.show();
        QVERIFY(QTest::qWaitForWindowExposed(&flag));
        for (const QSize size : {QSize(200, 100), QSize(321, 187)}) {
            flag.resize(size);
            const auto onScreen = [&flag] {
                return flag.screen()->grabWindow(flag.winId()).toImage();
            };
            QTRY_COMPARE(onScreen().size(), size);
            QTRY_VERIFY(showsFlag(onScreen()));
            QCOMPARE(flag.resized, size);
            QVERIFY(showsFlag(flag.grabFramebuffer()));
        }
    }

    void drawsOnlyWhenAsked()
    {
        QFETCH_GLOBAL(const GlCanvas::Way, way);
        GlCanvas::setWay(way);
        Flag flag;
        QWidget above(&flag);
        above.setGeometry(50, 20, 30, 30);
        flag.show();
        QVERIFY(QTest::qWaitForWindowExposed(&flag));
        QTRY_VERIFY(flag.paints > 0);
        QCoreApplication::processEvents();
        QSignalSpy frames(&flag, &GlCanvas::frameSwapped);
        const int before = flag.paints;
        flag.update();
        QVERIFY(frames.wait());
        QCOMPARE(flag.paints, before + 1);
        if (way == GlCanvas::Way::ReadBack) {
            above.update();
            QTest::qWait(20);
            QCOMPARE(flag.paints, before + 1);
        }
    }

    void sculptingLooksAndPicksTheSame()
    {
        QFETCH_GLOBAL(const GlCanvas::Way, way);
        GlCanvas::setWay(way);
        const auto relief = medal(120, 90);
        SculptWin view;
        view.setRelief(relief.get());
        view.resize(480, 360);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTRY_VERIFY((view.grabFramebuffer(), view.pictureComplete()));
        static QImage first;
        const QImage picture = view.grabFramebuffer().convertToFormat(QImage::Format_RGB32);
        if (first.isNull())
            first = picture;
        QCOMPARE(picture, first);
        QVERIFY(view.pick({240, 180}).hit);
        QVERIFY(!view.pick({2, 2}).hit);
    }
};

QTEST_MAIN(TestGlCanvas)
#include "tst_glcanvas.moc"

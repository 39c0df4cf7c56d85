#include "ui/progressbox.h"

#include "files/stlwriter.h"
#include "relief/grid/relief.h"
#include "ui/mainwindow.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

namespace {

/// Does `act` once, when the dialog of the work has come up.
class WhenShown : public QObject
{
public:
    explicit WhenShown(std::function<void(QProgressDialog &)> act)
        : m_act(std::move(act))
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto *dialog = qobject_cast<QProgressDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            m_timer.stop();
            m_act(*dialog);
        });
        m_timer.start(10);
    }

private:
    std::function<void(QProgressDialog &)> m_act;
    QTimer m_timer;
};

/// Works until `done` says so; false when it never does.
template <typename Done>
bool workUntil(ProgressBox &progress, Done done)
{
    QElapsedTimer since;
    since.start();
    while (!done() && since.elapsed() < 20000) {
        progress.advance(0.75);
        QThread::msleep(1);
    }
    return done();
}

/// A progress whose first step lasts until the work is cancelled.
class Slowly : public Progress
{
public:
    explicit Slowly(ProgressBox &progress)
        : m_progress(progress)
    {
    }
    void advance(double) override
    {
        workUntil(m_progress, [this] { return m_progress.cancelled(); });
    }
    bool cancelled() const override { return m_progress.cancelled(); }

private:
    ProgressBox &m_progress;
};

} // namespace

class TestProgressBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_window = std::make_unique<MainWindow>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void cleanupTestCase() { m_window.reset(); }

    void shortWorkShowsNothing()
    {
        bool shown = false;
        const WhenShown person([&](QProgressDialog &) { shown = true; });
        ProgressBox progress(QStringLiteral("Exporting"), m_window.get());
        progress.advance(0.5);
        QApplication::processEvents();
        QVERIFY(!shown && !m_window->findChild<QProgressDialog *>());
    }

    void longWorkShowsHowFarItIs()
    {
        QString label;
        int value = 0;
        const WhenShown person([&](QProgressDialog &dialog) {
            label = dialog.labelText();
            value = dialog.value();
        });
        {
            ProgressBox progress(QStringLiteral("Exporting"), m_window.get());
            QVERIFY(workUntil(progress, [&] { return value > 0; }));
        }
        QCOMPARE(label, QStringLiteral("Exporting"));
        QCOMPARE(value, 750);
        QVERIFY(!ProgressBox::anyAtWork());
        QVERIFY(!QApplication::activeModalWidget());
    }

    void cancelStopsAnExportAndKeepsTheOldFile()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("old.stl"));
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();
        Relief relief(16, 16);
        std::fill_n(relief.heights().data(), relief.cells(), 1.0F);
        const WhenShown person([](QProgressDialog &dialog) {
            QTest::mouseClick(dialog.findChild<QPushButton *>(), Qt::LeftButton);
        });
        ProgressBox progress(QStringLiteral("Exporting"), m_window.get());
        Slowly slow(progress);
        QVERIFY(!exportGridStl(relief, path, &slow));
        QVERIFY(progress.cancelled());
        QVERIFY(old.open(QIODevice::ReadOnly));
        QCOMPARE(old.readAll(), QByteArray("old"));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    }

    /// Closing the window waits for the work and opens no other dialog.
    void closingTheWindowWaitsForTheWork()
    {
        bool asked = false;
        bool closed = true;
        bool opened = true;
        const WhenShown person([&](QProgressDialog &) {
            closed = m_window->close();
            opened = m_window->openFile(QStringLiteral("/tmp/any.png"), 1);
            asked = true;
        });
        {
            ProgressBox progress(QStringLiteral("Exporting"), m_window.get());
            QVERIFY(workUntil(progress, [&] { return asked; }));
        }
        QVERIFY(!closed && !opened);
        QVERIFY(m_window->isVisible());
        QVERIFY(m_window->close());
    }

private:
    std::unique_ptr<MainWindow> m_window;
};

QTEST_MAIN(TestProgressBox)
#include "tst_progressbox.moc"

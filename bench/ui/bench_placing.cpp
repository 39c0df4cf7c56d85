#include "base/keptmemory.h"
#include "baseline.h"
#include "relief/grid/relief.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/library/patternpanel.h"
#include "ui/library/patternstore.h"
#include "ui/mainwindow.h"
#include "ui/ribbon/office2013style.h"

#include <QApplication>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <cmath>

using namespace marlowen;

// A pattern of 1000 x 1000 cells dragged over a relief of 2000 x 2000 in the program's window of
// 1280 x 800, both views side by side: from the pointer's move to the picture on the screen.
// "compose_ms" is the toolkit's share: the window put together without a new picture. The
// "compositions" of the window and "other_pictures" of the view beside are counted for each move.
// Skipped without a display.

namespace {

constexpr int reliefSide = 2000;
constexpr int patternSide = 1000;
constexpr int moves = 100;

std::unique_ptr<Relief> waves(int side)
{
    auto relief = std::make_unique<Relief>(side, side);
    float *height = relief->heights().data();
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const double away = std::hypot(column - side / 2, row - side / 2);
            *height++ = static_cast<float>(30.0 + 8.0 * std::sin(away / 20.0));
        }
    }
    return relief;
}

/// A home of its own, so that nobody's settings and library are touched.
struct Home
{
    QTemporaryDir folder;
    Home()
    {
        qputenv("HOME", folder.path().toUtf8());
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qunsetenv(name);
        keepFreedMemory();
        QSurfaceFormat format;
        format.setProfile(QSurfaceFormat::CompatibilityProfile);
        format.setDepthBufferSize(24);
        QSurfaceFormat::setDefaultFormat(format);
    }
};

class Hand
{
public:
    Hand()
    {
        QApplication::setStyle(new Office2013Style);
        m_window = std::make_unique<MainWindow>();
        m_window->workbench().take(waves(reliefSide));
        m_window->resize(1280, 800);
        m_window->show();
        QTest::qWait(1500); // until the start is over and the pictures are complete
        m_window->zoomAll();
        Progress quiet;
        const Result<QString> pattern =
            addReliefPattern(*waves(patternSide), {"Waves", m_home.folder.path()}, quiet);
        emit m_window->findChild<PatternPanel *>()->placeWanted(pattern.value());
        QTest::qWait(1500);
        QObject::connect(&flat(), &GlCanvas::frameSwapped, [this] {
            ++m_compositions;
            m_shown = flat().counters().pictures;
        });
        m_middle = flat().mapTo(m_window.get(), flat().rect().center());
        QTest::mouseMove(m_window->windowHandle(), m_middle);
        QTest::mousePress(m_window->windowHandle(), Qt::LeftButton, {}, m_middle);
    }
    ~Hand()
    {
        QTest::mouseRelease(m_window->windowHandle(), Qt::LeftButton, {}, m_middle);
        QTest::keyClick(m_window->windowHandle(), Qt::Key_Escape);
    }

    /// Returns when the 2D view with the pattern there is on the screen.
    void moveBy(QPoint offset)
    {
        const int before = flat().counters().pictures;
        QTest::mouseMove(m_window->windowHandle(), m_middle + offset);
        while (m_shown <= before)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    /// The window put together anew from pictures that are there.
    void compose()
    {
        const int before = m_compositions;
        flat().update();
        while (m_compositions == before)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    FlatWin &flat() { return *m_window->flatWin(); }
    int otherPictures() { return m_window->sculptWin()->counters().pictures; }
    int compositions() const { return m_compositions; }

private:
    Home m_home;
    int m_count = 1;
    char m_name[9] = "bench_ui";
    char *m_arguments[2] = {m_name, nullptr};
    QApplication m_application{m_count, m_arguments};
    std::unique_ptr<MainWindow> m_window;
    QPoint m_middle;
    int m_compositions = 0;
    int m_shown = 0; ///< number of the picture that is on the screen
};

void placing(benchmark::State &state)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        state.SkipWithError("no display");
        return;
    }
    Hand hand;
    baseline::Copier copier(size_t{reliefSide} * reliefSide * sizeof(float));
    copier.seconds();
    std::vector<double> copies;
    std::vector<double> frames;
    std::vector<double> composing;
    while (composing.size() < 30) {
        const double start = baseline::now();
        hand.compose();
        composing.push_back(baseline::now() - start);
    }
    const int before = hand.otherPictures();
    const int composed = hand.compositions();
    double angle = 0.0;
    for (auto _ : state) {
        copies.push_back(copier.seconds());
        angle += 0.1;
        const double start = baseline::now();
        hand.moveBy(QPointF(40 * std::sin(angle), 40 * std::cos(angle)).toPoint());
        frames.push_back(baseline::now() - start);
        state.SetIterationTime(frames.back());
    }
    const auto count = static_cast<double>(state.iterations());
    double whole = 0.0;
    for (const double frame : frames)
        whole += frame;
    state.counters["fps"] = count / whole;
    state.counters["median_ms"] = 1e3 * baseline::median(frames);
    state.counters["compose_ms"] = 1e3 * baseline::median(composing);
    state.counters["x_copy"] = baseline::median(frames) / baseline::median(copies);
    state.counters["copy_ms"] = 1e3 * baseline::median(copies);
    state.counters["compositions"] = (hand.compositions() - composed) / count;
    state.counters["other_pictures"] = (hand.otherPictures() - before) / count;
}
BENCHMARK(placing)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->MeasureProcessCPUTime()
    ->Iterations(moves);

} // namespace

#include "import/imageimport.h"
#include "import/importsession.h"

#include "import/testpicture.h"

#include <QtTest>

#include <cmath>

using namespace marlowen;

namespace {

std::unique_ptr<Relief> importedPicture(const ImportSettings &settings = {})
{
    return std::make_unique<Relief>(std::make_unique<ImportSource>(greyGrid(picture()), settings));
}

std::vector<float> heightsOf(const Relief &relief)
{
    return {relief.heights().constData(), relief.heights().constData() + relief.cells()};
}

std::vector<float> referenceOf(const Relief &relief)
{
    return {relief.referenceLayer().constData(),
            relief.referenceLayer().constData() + relief.cells()};
}

} // namespace

class TestImportSession : public QObject
{
    Q_OBJECT

private slots:
    void aFreshImportKeepsItsReference()
    {
        const auto plain = importedPicture();
        QVERIFY(heightsOf(*plain) == referenceOf(*plain));
        QCOMPARE(plain->rangeMaximum, 196.0);
        const auto hidden = importedPicture({.preview = false, .trim = 5, .depth = 10.0});
        QVERIFY(heightsOf(*hidden) == referenceOf(*hidden));
        QCOMPARE(hidden->rangeMaximum, 196.0);
    }

    void settersRecomputeFromTheSource()
    {
        const auto relief = importedPicture();
        const std::vector<float> original = heightsOf(*relief);
        ImportSession session;
        int changes = 0;
        session.changed = [&changes] { ++changes; };
        session.attach(relief.get());
        session.setSmoothing(2.5);
        session.setTrim(20);
        session.setTilt(50, -50);
        session.setRaiseLower(70);
        session.setInvertZ(true);
        QVERIFY(heightsOf(*relief) != original);
        QVERIFY(heightsOf(*relief) == referenceOf(*relief));
        session.setInvertZ(false);
        session.setRaiseLower(0);
        session.setTilt(0, 0);
        session.setTrim(0);
        session.setSmoothing(0.0);
        QVERIFY(heightsOf(*relief) == original);
        QCOMPARE(changes, 10);
    }

    /// Every step at once; the numbers come from a separate calculation, cell by cell.
    void allStepsTogether()
    {
        FloatGrid source(8, 7);
        for (int y = 1; y < 7; ++y) {
            for (int x = 1; x < 8; ++x)
                source.row(y)[x] = static_cast<float>(20 + (x * 37 + y * 53) % 90);
        }
        const ImportSettings settings{.flipY = true,
                                      .invertZ = true,
                                      .smoothing = 1.5,
                                      .raiseLower = -20,
                                      .trim = 1,
                                      .tiltHorizontal = 40,
                                      .tiltVertical = -70,
                                      .depth = 30.0};
        // Columns 2 to 6 of rows 1 to 4; everything around them is empty.
        constexpr float expected[4][5] = {
            {8.7976284F, 13.5919533F, 15.2001734F, 14.7002401F, 9.48400688F},
            {13.5134096F, 20.0631809F, 21.001276F, 18.5833645F, 11.8055496F},
            {14.6925735F, 20.3610649F, 19.053196F, 16.5634727F, 11.5235071F},
            {11.2364731F, 13.914115F, 12.0715714F, 11.4449635F, 8.39580059F}};
        const Relief relief(std::make_unique<ImportSource>(source, settings));
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 8; ++x) {
                const bool figure = x >= 2 && x <= 6 && y >= 1 && y <= 4;
                const float wanted = figure ? expected[y - 1][x - 2] : 0.0F;
                QVERIFY2(std::abs(relief.heightAt(x, y) - wanted) < 1e-5F,
                         qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
            }
        }
    }

    void theOrderOfSettingsDoesNotMatter()
    {
        const ImportSettings settings{.flipY = true,
                                      .invertZ = true,
                                      .smoothing = 1.5,
                                      .raiseLower = -20,
                                      .trim = 2,
                                      .tiltHorizontal = 30,
                                      .depth = 40.0};
        const auto atOnce = importedPicture(settings);
        const auto oneByOne = importedPicture();
        ImportSession session;
        session.attach(oneByOne.get());
        session.setTilt(30, 0);
        session.setDepth(40.0); // the slope is rebuilt for the new depth
        session.setTrim(2);
        session.setRaiseLower(-20);
        session.setSmoothing(1.5);
        session.setInvertZ(true);
        session.setFlipY(true);
        QVERIFY(session.settings() == settings);
        QVERIFY(heightsOf(*oneByOne) == heightsOf(*atOnce));
    }

    void tiltCountsWithoutPreviewToo()
    {
        const auto flat = importedPicture({.preview = false});
        const auto tilted = importedPicture({.preview = false, .tiltHorizontal = 100});
        QVERIFY(heightsOf(*flat) != heightsOf(*tilted));
    }

    void settersMarkTheReliefChanged()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        for (const bool preview : {false, true}) {
            relief->heightsChanged = false;
            relief->frameRegion = {};
            session.setPreview(preview);
            QVERIFY(relief->heightsChanged);
            QCOMPARE(relief->frameRegion, QRegion(relief->rect()));
        }
    }

    void withoutPreviewTheReferenceStays()
    {
        const auto relief = importedPicture();
        const std::vector<float> before = referenceOf(*relief);
        ImportSession session;
        session.attach(relief.get());
        session.setPreview(false);
        session.setInvertZ(true);
        QVERIFY(heightsOf(*relief) != before);
        QVERIFY(referenceOf(*relief) == before);
    }

    void whatMakesTheResultStale()
    {
        const auto relief = importedPicture();
        auto &source = *static_cast<ImportSource *>(relief->source());
        ImportSession session;
        session.attach(relief.get());
        QVERIFY(session.dirty());
        source.dirty = false;
        session.setPreview(false);
        session.setPreview(true);
        session.setBasRelief(true);
        QVERIFY(!session.dirty());
        const std::vector<std::function<void()>> changes{
            [&] { session.setFlipY(true); },         [&] { session.setInvertZ(true); },
            [&] { session.setTransparency(false); }, [&] { session.setSmoothing(1); },
            [&] { session.setRaiseLower(1); },       [&] { session.setTrim(1); },
            [&] { session.setTilt(1, 0); },          [&] { session.setGridSize(4); },
            [&] { session.setContrastFactor(16); },  [&] { session.setSmoothness(50000); }};
        for (const auto &change : changes) {
            source.dirty = false;
            change();
            QVERIFY(session.dirty());
        }
    }

    void basReliefRunsOnUpdateOnly()
    {
        const auto relief = importedPicture();
        ImportSession session;
        int runs = 0;
        session.basReliefGenerator = [&runs](const BasReliefInput &input, Progress &) {
            ++runs;
            const size_t cells =
                static_cast<size_t>(input.width) * static_cast<size_t>(input.height);
            return std::optional(std::vector<float>(cells, static_cast<float>(input.gridSize)));
        };
        session.attach(relief.get());
        session.setBasRelief(true);
        session.setGridSize(8);
        QCOMPARE(runs, 0);
        session.update(nullptr);
        QCOMPARE(runs, 1);
        QVERIFY(!session.dirty());
        QCOMPARE(relief->heightAt(0), 8.0F);
        QVERIFY(heightsOf(*relief) == referenceOf(*relief));
        // Off and on again shows the last result without computing it.
        session.setBasRelief(false);
        QCOMPARE(relief->heightAt(0), 0.0F);
        session.setBasRelief(true);
        QCOMPARE(relief->heightAt(0), 8.0F);
        QCOMPARE(runs, 1);
        // A stale result is not shown.
        session.setInvertZ(true);
        QCOMPARE(relief->heightAt(0), 0.0F);
        QVERIFY(session.dirty());
    }

    void aCancelledBasReliefKeepsTheHeights()
    {
        const auto relief = importedPicture();
        const std::vector<float> before = heightsOf(*relief);
        ImportSession session;
        session.attach(relief.get());
        session.setBasRelief(true);
        session.update(nullptr); // no generator
        QVERIFY(session.dirty());
        session.basReliefGenerator = [](const BasReliefInput &,
                                        Progress &) -> std::optional<std::vector<float>> {
            return {};
        };
        session.update(nullptr);
        QVERIFY(session.dirty());
        QVERIFY(heightsOf(*relief) == before);
    }

    void acceptingEndsTheImport()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        session.setTrim(3);
        const std::vector<float> heights = heightsOf(*relief);
        session.accept();
        QVERIFY(!session.active() && !session.dirty() && !relief->source());
        session.setTrim(9);
        QVERIFY(heightsOf(*relief) == heights);
    }

    void aResizedReliefIsLeftAlone()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        Relief::Grid small{2, 2, GridLayer(4), GridLayer(4), GridLayer(4), GridLayer(4)};
        Relief::Grid old = relief->replaceGrid(std::move(small));
        QVERIFY(!session.active());
        session.setInvertZ(true);
        session.update(nullptr);
        QCOMPARE(relief->heightAt(3), 0.0F);
        relief->replaceGrid(std::move(old));
        QVERIFY(session.active());
    }

    void aNewFileStartsFromTheControls()
    {
        ImportSession session;
        session.setFlipY(true);
        session.setSmoothing(99.0); // clamped
        session.setTrim(7);
        session.setGridSize(16);
        const ImportSettings expected{.flipY = true, .smoothing = 5.0};
        QVERIFY(session.openingSettings() == expected);
    }

    void sliderPositions()
    {
        QCOMPARE(gridSizeOfSlider(1), 2);
        QCOMPARE(gridSizeOfSlider(5), 32);
        QCOMPARE(gridSizeOfSlider(9), 4);
        QCOMPARE(contrastFactorOfSlider(16), 65536);
        QCOMPARE(smoothnessOfSlider(1), 20000);
        QCOMPARE(smoothnessOfSlider(9), 10000000);
        QCOMPARE(smoothnessOfSlider(10), 100000);
    }
};

QTEST_GUILESS_MAIN(TestImportSession)
#include "tst_importsession.moc"

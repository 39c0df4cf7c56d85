#include "import/imageimport.h"
#include "import/importsession.h"

#include "import/testpicture.h"

#include <QtTest>

#include <cmath>
#include <type_traits>

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

template <typename Value>
void set(ImportSession &session, Value ImportSettings::*member, std::type_identity_t<Value> value)
{
    ImportSettings settings = session.settings();
    settings.*member = value;
    session.change(settings);
}

void setTilt(ImportSession &session, int horizontal, int vertical)
{
    ImportSettings settings = session.settings();
    settings.tiltHorizontal = horizontal;
    settings.tiltVertical = vertical;
    session.change(settings);
}

/// A bas-relief of its grid size everywhere.
std::optional<std::vector<float>> levelOf(const BasReliefInput &input, Progress &)
{
    const auto cells = static_cast<size_t>(input.heights.cells());
    return std::vector<float>(cells, static_cast<float>(input.gridSize));
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
        set(session, &ImportSettings::smoothing, 2.5);
        set(session, &ImportSettings::trim, 20);
        setTilt(session, 50, -50);
        set(session, &ImportSettings::raiseLower, 70);
        set(session, &ImportSettings::invertZ, true);
        QVERIFY(heightsOf(*relief) != original);
        QVERIFY(heightsOf(*relief) == referenceOf(*relief));
        set(session, &ImportSettings::invertZ, false);
        set(session, &ImportSettings::raiseLower, 0);
        setTilt(session, 0, 0);
        set(session, &ImportSettings::trim, 0);
        set(session, &ImportSettings::smoothing, 0.0);
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
        setTilt(session, 30, 0);
        set(session, &ImportSettings::depth, 40.0); // the slope is rebuilt for the new depth
        set(session, &ImportSettings::trim, 2);
        set(session, &ImportSettings::raiseLower, -20);
        set(session, &ImportSettings::smoothing, 1.5);
        set(session, &ImportSettings::invertZ, true);
        set(session, &ImportSettings::flipY, true);
        QVERIFY(session.settings() == settings);
        QVERIFY(heightsOf(*oneByOne) == heightsOf(*atOnce));
    }

    void tiltCountsWithoutPreviewToo()
    {
        const auto flat = importedPicture({.preview = false});
        const auto tilted = importedPicture({.preview = false, .tiltHorizontal = 100});
        QVERIFY(heightsOf(*flat) != heightsOf(*tilted));
    }

    void withoutPreviewTheReferenceStays()
    {
        const auto relief = importedPicture();
        const std::vector<float> before = referenceOf(*relief);
        ImportSession session;
        session.attach(relief.get());
        set(session, &ImportSettings::preview, false);
        set(session, &ImportSettings::invertZ, true);
        QVERIFY(heightsOf(*relief) != before);
        QVERIFY(referenceOf(*relief) == before);
    }

    void changesInvalidateTheResult()
    {
        const auto relief = importedPicture();
        auto &source = *static_cast<ImportSource *>(relief->source());
        ImportSession session;
        session.attach(relief.get());
        QVERIFY(session.dirty());
        source.dirty = false;
        set(session, &ImportSettings::preview, false);
        set(session, &ImportSettings::preview, true);
        set(session, &ImportSettings::basRelief, true);
        QVERIFY(!session.dirty());
        const std::vector<std::function<void()>> changes{
            [&] { set(session, &ImportSettings::flipY, true); },
            [&] { set(session, &ImportSettings::invertZ, true); },
            [&] { set(session, &ImportSettings::transparency, false); },
            [&] { set(session, &ImportSettings::smoothing, 1); },
            [&] { set(session, &ImportSettings::raiseLower, 1); },
            [&] { set(session, &ImportSettings::trim, 1); },
            [&] { setTilt(session, 1, 0); },
            [&] { set(session, &ImportSettings::gridSize, 4); },
            [&] { set(session, &ImportSettings::contrastFactor, 16); },
            [&] { set(session, &ImportSettings::smoothness, 50000); }};
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
        session.basReliefGenerator = [&runs](const BasReliefInput &input, Progress &progress) {
            ++runs;
            return levelOf(input, progress);
        };
        session.attach(relief.get());
        set(session, &ImportSettings::basRelief, true);
        set(session, &ImportSettings::gridSize, 8);
        QCOMPARE(runs, 0);
        session.update(nullptr);
        QCOMPARE(runs, 1);
        QVERIFY(!session.dirty());
        QCOMPARE(relief->heightAt(0), 8.0F);
        QVERIFY(heightsOf(*relief) == referenceOf(*relief));
        // Off and on again shows the last result without computing it.
        set(session, &ImportSettings::basRelief, false);
        QCOMPARE(relief->heightAt(0), 0.0F);
        set(session, &ImportSettings::basRelief, true);
        QCOMPARE(relief->heightAt(0), 8.0F);
        QCOMPARE(runs, 1);
        // A stale result is not shown.
        set(session, &ImportSettings::invertZ, true);
        QCOMPARE(relief->heightAt(0), 0.0F);
        QVERIFY(session.dirty());
    }

    void aCancelledBasReliefKeepsTheHeights()
    {
        const auto relief = importedPicture();
        const std::vector<float> before = heightsOf(*relief);
        ImportSession session;
        session.attach(relief.get());
        set(session, &ImportSettings::basRelief, true);
        session.basReliefGenerator = [](const BasReliefInput &,
                                        Progress &) -> std::optional<std::vector<float>> {
            return {};
        };
        session.update(nullptr);
        QVERIFY(session.dirty());
        QVERIFY(heightsOf(*relief) == before);
        // The last result stays where it is shown.
        const BasReliefGenerator cancelled = std::exchange(session.basReliefGenerator, levelOf);
        session.update(nullptr);
        set(session, &ImportSettings::gridSize, 16);
        session.basReliefGenerator = cancelled;
        session.update(nullptr);
        QVERIFY(session.dirty());
        QCOMPARE(relief->heightAt(0), 2.0F);
    }

    void comparingShowsTheHeightsWithoutTheStep()
    {
        const auto relief = importedPicture();
        const std::vector<float> before = heightsOf(*relief);
        ImportSession session;
        session.basReliefGenerator = levelOf;
        session.attach(relief.get());
        session.compare(true);
        set(session, &ImportSettings::basRelief, true);
        QVERIFY(!session.canCompare());
        session.update(nullptr);
        QVERIFY(session.canCompare());
        int shown = 0;
        session.shown = [&shown] { ++shown; };
        session.compare(true);
        QVERIFY(heightsOf(*relief) == before);
        session.compare(false);
        QCOMPARE(relief->heightAt(0), 2.0F);
        QCOMPARE(shown, 2);
        session.compare(true);
        set(session, &ImportSettings::gridSize, 16);
        QCOMPARE(relief->heightAt(0), 2.0F);
        session.compare(true);
        session.accept();
        QCOMPARE(relief->heightAt(0), 2.0F);
    }

    void aSmallBasReliefFollowsItsControls()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.basReliefGenerator = levelOf;
        session.followsChanges = true;
        session.attach(relief.get());
        set(session, &ImportSettings::gridSize, 4);
        QCOMPARE(relief->heightAt(0), 0.0F);
        set(session, &ImportSettings::basRelief, true);
        QCOMPARE(relief->heightAt(0), 4.0F);
        set(session, &ImportSettings::gridSize, 32);
        QCOMPARE(relief->heightAt(0), 32.0F);
        QVERIFY(!session.dirty());
    }

    void cancelledDebandingChangesNothing()
    {
        struct Cancelled : Progress
        {
            bool cancelled() const override { return true; }
        };
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        session.startWork = [] { return std::make_unique<Cancelled>(); };
        const std::vector<float> before = heightsOf(*relief);
        set(session, &ImportSettings::deband, 1.0);
        QCOMPARE(session.settings().deband, 0.0);
        session.startWork = nullptr;
        set(session, &ImportSettings::invertZ, true);
        set(session, &ImportSettings::invertZ, false);
        QVERIFY(heightsOf(*relief) == before);
        set(session, &ImportSettings::deband, 1.0);
        QCOMPARE(session.settings().deband, 1.0);
    }

    void acceptingEndsTheImport()
    {
        const auto relief = importedPicture();
        ImportSession session;
        session.attach(relief.get());
        set(session, &ImportSettings::trim, 3);
        const std::vector<float> heights = heightsOf(*relief);
        session.accept();
        QVERIFY(!session.active() && !session.dirty() && !relief->source());
        set(session, &ImportSettings::trim, 9);
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
        set(session, &ImportSettings::invertZ, true);
        session.update(nullptr);
        QCOMPARE(relief->heightAt(3), 0.0F);
        relief->replaceGrid(std::move(old));
        QVERIFY(session.active());
    }

    void aNewFileStartsFromTheControls()
    {
        ImportSession session;
        set(session, &ImportSettings::flipY, true);
        set(session, &ImportSettings::smoothing, 99.0); // clamped
        set(session, &ImportSettings::trim, 7);
        set(session, &ImportSettings::gridSize, 16);
        const ImportSettings expected{.flipY = true, .smoothing = 5.0};
        QVERIFY(session.openingSettings() == expected);
        // The settings of a model do not apply to the next picture.
        const auto model = importedPicture();
        session.attach(model.get());
        set(session, &ImportSettings::invertZ, true);
        QVERIFY(session.openingSettings() == expected);
        session.accept();
        QVERIFY(session.settings() == expected);
    }
};

QTEST_GUILESS_MAIN(TestImportSession)
#include "tst_importsession.moc"

#include "render/views/picturequality.h"

#include <QtTest>

using namespace marlowen;

class PictureQualityTest : public QObject
{
    Q_OBJECT

private slots:
    void levelsFollowTheHand()
    {
        using Quality = PictureQuality;
        constexpr size_t many = 2000000;
        Quality quality;
        quality.moved();
        QCOMPARE(quality.wanted(false, many), Quality::Complete); // graphics hardware
        quality.setSlow(true);
        QCOMPARE(quality.wanted(true, many), Quality::Coarse);
        QVERIFY(quality.mostFacets(Quality::Coarse) < quality.mostFacets(Quality::Smooth));
        quality.released();
        QCOMPARE(quality.wanted(true, many), Quality::Draft);
        QCOMPARE(quality.wanted(false, 1000), Quality::Complete);
        QCOMPARE(quality.wanted(false, many), Quality::Smooth);
        quality.drawing(Quality::Smooth);
        QTRY_COMPARE(quality.wanted(false, many), Quality::Complete);
        QCOMPARE(quality.mostFacets(Quality::Complete), Quality::allFacets);
        quality.changed();
        QCOMPARE(quality.wanted(false, many), Quality::Smooth);
    }

    void facetsFollowTheTimeOfAFrame()
    {
        std::chrono::milliseconds now(0);
        PictureQuality quality([&] { return now; });
        const auto facets = [&] { return quality.mostFacets(PictureQuality::Coarse); };
        const size_t first = facets();
        quality.moved();
        quality.released();
        quality.drawing(PictureQuality::Coarse);
        now += std::chrono::milliseconds(40);
        quality.shown();
        QVERIFY(facets() < first);
        // Pictures at rest tell nothing.
        const size_t fewer = facets();
        quality.drawing(PictureQuality::Complete);
        quality.shown();
        QCOMPARE(facets(), fewer);
        // But how many facets are drawn at once there.
        quality.setSlow(true);
        constexpr size_t many = 4000000;
        QCOMPARE(quality.wanted(false, many), PictureQuality::Smooth);
        quality.drawing(PictureQuality::Smooth, many / 4);
        now += std::chrono::milliseconds(30);
        quality.shown();
        QCOMPARE(quality.wanted(false, many), PictureQuality::Complete);
        quality.drawing(PictureQuality::Complete, many);
        now += std::chrono::milliseconds(400);
        quality.shown();
        QCOMPARE(quality.wanted(false, many), PictureQuality::Smooth);
        // A quick picture after a longer rest brings them back, a slow one takes nothing away.
        for (const int milliseconds : {100, 400}) {
            quality.drawing(PictureQuality::Smooth);
            QTRY_COMPARE(quality.wanted(false, 100 * many), PictureQuality::Complete);
            quality.drawing(PictureQuality::Complete, many);
            now += std::chrono::milliseconds(milliseconds);
            quality.shown();
            quality.changed();
            QCOMPARE(quality.wanted(false, many), PictureQuality::Complete);
        }
    }
};

QTEST_GUILESS_MAIN(PictureQualityTest)
#include "tst_picturequality.moc"

#include "render/views/picturequality.h"

#include <algorithm>
#include <utility>

namespace marlowen {

namespace {

// Milliseconds of rest: after a move, after its picture is on the screen, and after a move by a
// drag in another view, whose next move waits for the pictures of both.
constexpr int restInterval = 25;
constexpr int restAfterPicture = 12;
constexpr int restElsewhere = 120;
constexpr int settleInterval = 60;      ///< milliseconds, for a few more facets
constexpr int longSettleInterval = 600; ///< for a picture that takes long

/// Facets of the picture at rest: at first, and within what they are fitted to the driver.
constexpr double firstRestFacets = 1.5e6;
constexpr double fewestRestFacets = 200000;
constexpr double mostRestFacets = 1e7;
/// Milliseconds of a picture at rest: as wanted, and the most.
constexpr double restPicture = 160.0;
constexpr double longRestPicture = 200.0;

/// Facets of coarse pictures: at first, and within what they are fitted to the driver.
constexpr double firstFacets = 60000;
constexpr double fewestFacets = 38000;
constexpr double mostCoarseFacets = 4e6;
/// Milliseconds of a frame that is too slow, and of one that leaves time for more facets.
constexpr double slowFrame = 26.0;
constexpr double quickFrame = 14.0;

std::chrono::nanoseconds steadyTime()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

} // namespace

PictureQuality::PictureQuality(QObject *parent)
    : PictureQuality(steadyTime, parent)
{
}

PictureQuality::PictureQuality(Clock clock, QObject *parent)
    : QObject(parent)
    , m_coarseFacets(firstFacets)
    , m_restFacets(firstRestFacets)
    , m_clock(std::move(clock))
{
    for (QTimer *timer : {&m_rest, &m_settle})
        timer->setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, &PictureQuality::due);
    connect(&m_settle, &QTimer::timeout, this, [this] {
        m_settled = true;
        emit due();
    });
}

void PictureQuality::moved()
{
    m_movedOnce = true;
    m_rest.start(restInterval);
}

void PictureQuality::movedElsewhere()
{
    m_rest.start(restElsewhere);
}

void PictureQuality::released()
{
    m_rest.stop();
}

PictureQuality::Level PictureQuality::wanted(bool stroke, size_t facets) const
{
    if (!m_slow)
        return Complete;
    if (moving())
        return Coarse;
    if (stroke)
        return Draft;
    return m_settled || static_cast<double>(facets) <= m_restFacets ? Complete : Smooth;
}

size_t PictureQuality::mostFacets(Level level) const
{
    if (level == Coarse)
        return static_cast<size_t>(m_coarseFacets);
    if (level == Draft)
        return static_cast<size_t>(fewestRestFacets);
    return level == Complete ? allFacets : static_cast<size_t>(m_restFacets);
}

void PictureQuality::drawing(Level level, size_t facets)
{
    drawingPart(level);
    // The first pictures wait for the driver.
    if (level != Draft && m_movedOnce)
        m_frame = Frame{m_clock(), level, static_cast<double>(facets), m_settled};
}

void PictureQuality::drawingPart(Level level)
{
    m_frame.reset();
    m_settle.stop();
    if (level == Smooth)
        m_settle.start(m_longSettle ? longSettleInterval : settleInterval);
}

void PictureQuality::shown()
{
    if (m_rest.isActive() && m_rest.remainingTime() < restAfterPicture)
        m_rest.start(restAfterPicture);
    if (!m_frame)
        return;
    const Frame frame = *std::exchange(m_frame, std::nullopt);
    const double taken =
        std::max(std::chrono::duration<double, std::milli>(m_clock() - frame.began).count(), 1.0);
    if (frame.level == Coarse) {
        if (taken > slowFrame)
            m_coarseFacets = std::max(fewestFacets, m_coarseFacets * 0.8);
        else if (taken < quickFrame)
            m_coarseFacets = std::min(mostCoarseFacets, m_coarseFacets * 1.2);
        return;
    }
    const double fitting = frame.facets * restPicture / taken;
    // A picture after a longer rest may take its time.
    const bool isLong = taken > longRestPicture && !frame.settled;
    if (isLong || fitting > m_restFacets)
        m_restFacets = std::clamp(fitting, fewestRestFacets, mostRestFacets);
}

} // namespace marlowen

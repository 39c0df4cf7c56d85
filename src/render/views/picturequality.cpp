#include "render/views/picturequality.h"

#include <algorithm>
#include <utility>

namespace marlowen {

namespace {

constexpr int restInterval = 40;    ///< milliseconds
constexpr int settleInterval = 600; ///< milliseconds
/// Facets that a software driver draws antialiased in some 100 milliseconds.
constexpr size_t restFacets = 200000;

/// Facets of coarse pictures: at first, and within what they are fitted to the driver.
constexpr double firstFacets = 60000;
constexpr double fewestFacets = 38000;
constexpr double mostCoarseFacets = 4e6;
/// Milliseconds of a frame that is too slow, and of one that leaves time for more facets.
constexpr double slowFrame = 30.0;
constexpr double quickFrame = 15.0;

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
    , m_clock(std::move(clock))
{
    for (QTimer *timer : {&m_rest, &m_settle})
        timer->setSingleShot(true);
    m_rest.setInterval(restInterval);
    m_settle.setInterval(settleInterval);
    connect(&m_rest, &QTimer::timeout, this, &PictureQuality::due);
    connect(&m_settle, &QTimer::timeout, this, [this] {
        m_settled = true;
        emit due();
    });
}

void PictureQuality::moved()
{
    m_rest.start();
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
    return m_settled || facets <= restFacets ? Complete : Smooth;
}

size_t PictureQuality::mostFacets(Level level) const
{
    if (level == Coarse)
        return static_cast<size_t>(m_coarseFacets);
    return level == Complete ? allFacets : restFacets;
}

void PictureQuality::drawing(Level level)
{
    m_settle.stop();
    if (level == Smooth)
        m_settle.start();
    if (level == Coarse)
        m_frame = m_clock();
    else
        m_frame.reset();
}

void PictureQuality::shown()
{
    if (!m_frame)
        return;
    const double taken = std::chrono::duration<double, std::milli>(m_clock() - *m_frame).count();
    m_frame.reset();
    if (taken > slowFrame)
        m_coarseFacets = std::max(fewestFacets, m_coarseFacets * 0.8);
    else if (taken < quickFrame)
        m_coarseFacets = std::min(mostCoarseFacets, m_coarseFacets * 1.2);
}

} // namespace marlowen

#include "render/views/selectionants.h"

#include "relief/grid/relief.h"

#include <algorithm>
#include <bit>

namespace marlowen {

namespace {

/// How the dashes travel.
struct Pace
{
    int interval; ///< milliseconds
    int stride;   ///< bits of the pattern a tick
};
constexpr Pace smoothPace{200, 2};
constexpr Pace slowPace{1000, 4};
/// More corners than this are outlined in coarser blocks: nobody sees them one by one.
constexpr size_t mostCorners = 40000;

int cellsAPixel(double pixelsACell)
{
    // Powers of two, so that zooming seldom changes it.
    const double cells = pixelsACell > 0.0 ? 1.0 / pixelsACell : 1.0;
    return static_cast<int>(std::bit_floor(static_cast<unsigned>(std::clamp(cells, 1.0, 65536.0))));
}

} // namespace

SelectionAnts::SelectionAnts(QObject *parent)
    : QObject(parent)
{
    setSlow(false);
    connect(&m_timer, &QTimer::timeout, this, &SelectionAnts::_advance);
}

void SelectionAnts::setSlow(bool slow)
{
    const Pace &pace = slow ? slowPace : smoothPace;
    m_timer.setInterval(pace.interval);
    m_stride = pace.stride;
}

void SelectionAnts::update(QOpenGLFunctions_2_1 &gl, const Relief &relief, const QRect &region,
                           double pixelsACell)
{
    const int pixelStep = cellsAPixel(pixelsACell);
    if (m_dirty || pixelStep != m_step) {
        m_dirty = false;
        m_step = pixelStep;
        const QSize grid(relief.width(), relief.height());
        const auto outlined = [&](int step) {
            return outlineSelection(relief.selectionLayer(), grid, region, step);
        };
        int step = pixelStep;
        SelectionOutline outline = outlined(step);
        while (outline.corners.size() > mostCorners)
            outline = outlined(step *= 2);
        m_painter.setOutline(gl, std::move(outline), grid);
    }
    if (!m_painter.hasOutline())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
}

void SelectionAnts::draw(QOpenGLFunctions_2_1 &gl, double deviceRatio)
{
    m_painter.drawOutline(gl, {deviceRatio, m_phase});
}

void SelectionAnts::release(QOpenGLFunctions_2_1 &gl)
{
    m_painter.release(gl);
    m_dirty = true;
}

void SelectionAnts::_advance()
{
    m_phase = (m_phase + m_stride) % 16;
    emit moved();
}

} // namespace marlowen

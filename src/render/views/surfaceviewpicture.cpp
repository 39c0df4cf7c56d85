#include "render/camera/levelofdetail.h"
#include "render/engines/keptpicture.h"
#include "render/engines/shader.h"
#include "render/views/surfaceview.h"

#include <QGuiApplication>
#include <QOpenGLFunctions_2_1>

#include <algorithm>

namespace marlowen {

// The part of SurfaceView that keeps its picture up to date.

namespace {

/// Of a facet in a coarse picture: smaller ones are not worth their time while the hand moves.
constexpr size_t fewestPixels = 8;
/// Of a facet that is drawn with one sample while there is more to come.
constexpr size_t fewPixels = 4;
/// Facets a pixel beyond which more are not seen.
constexpr size_t mostPerPixel = 4;
/// Of a pixel of a smooth picture.
constexpr size_t samples = 4;
/// Pixels around a part of the picture that is drawn anew.
constexpr double margin = 2.0;

/// The part of the viewport that these pixels cover.
QRectF partUnder(const QRect &pixels, QSize size)
{
    const auto at = [](int pixel, int length) { return 2.0 * pixel / length - 1.0; };
    return {QPointF(at(pixels.x(), size.width()), at(pixels.y(), size.height())),
            QPointF(at(pixels.x() + pixels.width(), size.width()),
                    at(pixels.y() + pixels.height(), size.height()))};
}

} // namespace

/// A drag that is no stroke here changes the surface: a stroke in the other view, a pattern being
/// placed.
bool SurfaceView::_draggedElsewhere() const
{
    return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton) && !m_depthHeld;
}

void SurfaceView::updateLater()
{
    if (!slowDriver() || underMouse() || !_draggedElsewhere())
        update();
    else if (!m_laterTimer.isActive())
        m_laterTimer.start();
}

void SurfaceView::_updatePicture()
{
    const bool changed = updateSurface(*m_shader);
    // The whole picture follows when it rests.
    if (changed && _draggedElsewhere())
        m_pace.movedElsewhere();
    const bool resized = m_picture->resize(pixels());
    const ViewMatrices now = matrices();
    const SceneBox box = _roomyBox();
    const bool another = resized || m_pictureStale || now != m_drawn || box != m_drawnBox;
    const bool due = changed || another;
    if (!m_picture->isValid() || !(due || m_quality < _wantedQuality()))
        return;
    m_drawn = now;
    m_drawnBox = box;
    if (due)
        m_pace.changed();
    _rasterise(changed && !another);
}

PictureQuality::Level SurfaceView::_wantedQuality() const
{
    const Detail complete = _detailOf(PictureQuality::Complete);
    return m_pace.wanted(m_heldButton != Qt::NoButton && m_mode == SculptMode, _costOf(complete));
}

/// Facets of one sample a pixel that take as long.
size_t SurfaceView::_costOf(const Detail &detail) const
{
    return facets(detail.mostFacets) * (detail.smooth ? samples : 1);
}

SurfaceView::Detail SurfaceView::_detailOf(PictureQuality::Level level) const
{
    const size_t pixels = pixelCount();
    const size_t most = m_pace.mostFacets(level);
    if (level == PictureQuality::Coarse)
        return {std::min(most, pixels / fewestPixels), true, false};
    // Facets smaller than a pixel need neither colours nor samples between their corners; those of
    // a few pixels go without until the picture is drawn completely.
    // A surface without middling forms is drawn whole at rest.
    if (slowDriver() && isDense()) {
        const bool hasForms = facets(PictureQuality::allFacets) > 0;
        return {hasForms ? std::min(most, pixels * mostPerPixel) : most, true, false};
    }
    if (level != PictureQuality::Complete && facets(PictureQuality::allFacets) > pixels / fewPixels)
        return {most, true, false};
    return {most, false, level >= PictureQuality::Smooth};
}

/// Of a picture that is there: what must be drawn anew for a change of the surface, at the detail
/// of the rest; null when all of it is to be drawn at that quality, which is faster or better.
QRectF SurfaceView::_partToDraw(PictureQuality::Level wanted) const
{
    QRectF part = changedPart(m_detail);
    if (part.isNull() || m_quality < wanted)
        return {};
    const double x = 2.0 * margin / width();
    const double y = 2.0 * margin / height();
    part = part.adjusted(-x, -y, x, y) & wholeViewport;
    const double share = part.width() * part.height() / 4.0;
    const double work = share * static_cast<double>(_costOf(m_detail));
    const bool quick = work <= static_cast<double>(_detailOf(wanted).mostFacets);
    return m_quality == wanted || quick ? part : QRectF();
}

void SurfaceView::_rasterise(bool mayBePart)
{
    const PictureQuality::Level wanted = _wantedQuality();
    const QRectF part = mayBePart ? _partToDraw(wanted) : QRectF();
    m_pace.setLongSettle(_detailOf(PictureQuality::Complete).smooth);
    if (part.isNull()) {
        m_quality = wanted;
        m_detail = _detailOf(wanted);
        m_pace.drawing(m_quality, _costOf(m_detail));
    } else {
        m_pace.drawingPart(m_quality);
        ++m_counters.parts;
    }
    Detail detail = m_detail;
    const QRect pixels = pixelsOf(part.isNull() ? wholeViewport : part, m_picture->size());
    // Pixels are cleared whole, and may be larger than cells.
    detail.part = partUnder(pixels, m_picture->size());
    m_picture->begin(*m_gl, {m_backdrop, detail.smooth, pixels});
    m_gl->glMatrixMode(GL_PROJECTION);
    m_gl->glLoadMatrixd(m_drawn.projection.data());
    m_gl->glMatrixMode(GL_MODELVIEW);
    m_gl->glLoadMatrixd(m_drawn.modelview.data());
    m_gl->glEnable(GL_DEPTH_TEST);
    drawSurface(*m_shader, detail);
    m_gl->glDisable(GL_DEPTH_TEST);
    m_picture->end(*m_gl);
    ++m_counters.pictures;
    m_pictureStale = false;
    m_depthStale = true;
    m_statusPending = true;
}

} // namespace marlowen

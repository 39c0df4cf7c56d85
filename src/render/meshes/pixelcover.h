#pragma once

#include "relief/grid/cellcode.h"
#include "render/camera/camera.h"

#include <QRect>

#include <algorithm>
#include <array>

namespace marlowen {

/// A corner of a facet in a picture, in pixels: (0, 0) is the middle of the lower left one.
struct PixelPlace
{
    float x;
    float y;
};

/// The pixels of a picture that are drawn, both ends included.
struct PixelBounds
{
    float left;
    float right;
    float low;
    float high;
};

/// The row of a matrix that gives one coordinate of a PixelPlace, x for axis 0 and y for axis 1:
/// the factors of a point's x, y and z and a constant. `toPicture` leads to -1..1, without
/// perspective; `length` is that of the picture in pixels.
inline std::array<double, 4> toPixels(const Matrix &toPicture, size_t axis, int length)
{
    const double half = length / 2.0;
    return {toPicture[axis] * half, toPicture[4 + axis] * half, toPicture[8 + axis] * half,
            (toPicture[12 + axis] + 1.0) * half - 0.5};
}

inline PixelBounds boundsOf(const QRect &pixels)
{
    return {static_cast<float>(pixels.left()), static_cast<float>(pixels.right()),
            static_cast<float>(pixels.top()), static_cast<float>(pixels.bottom())};
}

/// Pixels by which a driver may place a corner elsewhere.
constexpr float pixelTolerance = 1.0F / 64.0F;

/// The first whole number from `at` on, for 0 <= at < 2^31.
CELL_INLINE inline float roundedUp(float at)
{
    const auto below = static_cast<float>(static_cast<int>(at));
    return below < at ? below + 1.0F : below;
}

/// 1 or 0: a number, so that & and | of it need no branch.
CELL_INLINE inline int isAtMost(float a, float b)
{
    return a <= b;
}

/// The drawn pixels whose middles are within the box around a facet or no farther from it than
/// pixelTolerance: from x to lastX and from y to lastY; x and y are whole numbers.
struct PixelSpan
{
    float x;
    float y;
    float lastX;
    float lastY;
    float slack; ///< pixelTolerance times the longest edge or more

    CELL_INLINE int isEmpty() const { return 1 - (isAtMost(x, lastX) & isAtMost(y, lastY)); }
    /// More than two pixels wide or high.
    CELL_INLINE int isLarge() const
    {
        return isAtMost(x + 2.0F, lastX) | isAtMost(y + 2.0F, lastY);
    }
};

CELL_INLINE inline PixelSpan spanOf(PixelPlace a, PixelPlace b, PixelPlace c,
                                    const PixelBounds &bounds)
{
    const float left = std::min(std::min(a.x, b.x), c.x);
    const float right = std::max(std::max(a.x, b.x), c.x);
    const float low = std::min(std::min(a.y, b.y), c.y);
    const float high = std::max(std::max(a.y, b.y), c.y);
    return {roundedUp(std::max(left - pixelTolerance, bounds.left)),
            roundedUp(std::max(low - pixelTolerance, bounds.low)),
            std::min(right + pixelTolerance, bounds.right),
            std::min(high + pixelTolerance, bounds.high),
            pixelTolerance * ((right - left) + (high - low))};
}

/// On which side of an edge a pixel is, and how that changes to the next one across and up.
struct EdgeSide
{
    CELL_INLINE EdgeSide(PixelPlace from, PixelPlace to, const PixelSpan &span)
        : here((from.x - span.x) * (to.y - span.y) - (from.y - span.y) * (to.x - span.x))
        , across(from.y - to.y)
        , up(to.x - from.x)
    {
    }
    CELL_INLINE float at(float column, float row) const
    {
        return here + column * across + row * up;
    }

    float here;
    float across;
    float up;
};

/// 1 when the middle of one of the first two by two pixels of the span is under the facet or about
/// pixelTolerance beside it.
CELL_INLINE inline int coversPixel(PixelPlace a, PixelPlace b, PixelPlace c, const PixelSpan &span)
{
    const EdgeSide ab(a, b, span);
    const EdgeSide bc(b, c, span);
    const EdgeSide ca(c, a, span);
    const auto covers = [&](float column, float row) CELL_INLINE {
        const float p = ab.at(column, row);
        const float q = bc.at(column, row);
        const float r = ca.at(column, row);
        return isAtMost(-span.slack, std::min(std::min(p, q), r)) |
               isAtMost(std::max(std::max(p, q), r), span.slack);
    };
    const int next = isAtMost(span.x + 1.0F, span.lastX);
    const int above = isAtMost(span.y + 1.0F, span.lastY);
    return covers(0.0F, 0.0F) | (next & covers(1.0F, 0.0F)) |
           (above & (covers(0.0F, 1.0F) | (next & covers(1.0F, 1.0F))));
}

/// 0 when a facet changes nothing in a picture with one sample a pixel because no middle of a drawn
/// pixel is under it, else 1. Also 1 for large facets, which are not worth a closer test, and for
/// those with a middle just beside them. Without branches, for loops over many facets.
CELL_INLINE inline int liesOverPixel(PixelPlace a, PixelPlace b, PixelPlace c,
                                     const PixelBounds &bounds)
{
    const PixelSpan span = spanOf(a, b, c, bounds);
    return (1 - span.isEmpty()) & (span.isLarge() | coversPixel(a, b, c, span));
}

} // namespace marlowen

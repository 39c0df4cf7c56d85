#pragma once

#include <QtGlobal>

#include <memory>
#include <span>

class QDataStream;

namespace marlowen {

class Relief;

/// A relief as a binary stream, which must have the defaults of QDataStream (big-endian, double
/// precision): width and height as 32-bit integers, then zScale, range minimum and range maximum,
/// all heights and all reference heights as doubles, row 0 first. Selection, mask and snapshot are
/// not kept. The cells travel in blocks of converted values.

/// Returns whether the stream is still Ok after the last value.
bool writeRelief(QDataStream &stream, const Relief &relief);

/// What a read found.
struct ReliefRead
{
    std::unique_ptr<Relief> relief; ///< null when the stream is short or its size makes no sense
    /// Values that no relief may hold (NaN, infinite or negative heights, a Z scale or range that
    /// is not finite) and that were replaced: by 0, the Z scale by 1.
    qsizetype repaired = 0;
};

/// Takes no memory for cells that the stream's device cannot hold. Throws std::bad_alloc only when
/// a stream of unknown length promises too much.
ReliefRead readRelief(QDataStream &stream);

/// Makes values fit for heights: NaN, infinite and negative ones become 0. Returns how many.
qsizetype repairHeights(std::span<float> values);

} // namespace marlowen

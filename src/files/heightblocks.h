#pragma once

#include "base/progress.h"
#include "relief/grid/floatgrid.h"

namespace marlowen {

class FioStream;

/// Heights in a container: blocks of 65536 cells in grid order, the last one shorter. A block is a
/// byte for its form (0 plain, 1 deflated), a 32-bit count of bytes, most significant first, and
/// that many bytes: little-endian 32-bit floats, or the zlib stream of them when that is shorter.

/// False when the stream fails or the work is cancelled.
bool writeHeightBlocks(FioStream &fio, const GridView &heights, Progress &progress);

/// Whether `bytes` of a file can hold the blocks of so many cells, however well they deflate.
bool heightBlocksFit(qint64 cells, qint64 bytes);

/// Fills `heights`, whose width and height are set, taking memory as the blocks arrive. False when
/// the stream fails, a block is damaged or the work is cancelled.
bool readHeightBlocks(FioStream &fio, FloatGrid &heights, Progress &progress);

} // namespace marlowen

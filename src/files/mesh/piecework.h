#pragma once

#include <cstddef>
#include <functional>

namespace marlowen {

/// How a file is worked through piece by piece. A slot is the place of one piece at a time, 0 to
/// pieceSlots() - 1; the caller keeps what belongs to it.
struct PieceSteps
{
    /// Reads the next piece into the slot, or notes where it is; false when there is none.
    std::function<bool(size_t slot)> fill;
    /// Works on the piece. Runs on any thread, beside others: what it touches besides its slot must
    /// be locked.
    std::function<void(size_t slot)> work;
    /// Takes over the result. The pieces come in their order in the file.
    std::function<void(size_t slot)> take;
};

/// How many pieces are under way at most.
size_t pieceSlots();

/// Fills, works on and takes all pieces. The result does not depend on the number of threads:
/// `fill` and `take` are called by the calling thread alone, in the order of the pieces. What a
/// step throws is thrown here, after the other threads have ended.
void workThroughPieces(const PieceSteps &steps);

} // namespace marlowen

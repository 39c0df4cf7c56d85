#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlowen {

/// Two rows of cells that become one row of blocks; the same row twice where there is only one.
struct JoinRows
{
    std::array<const float *, 2> values;
    std::array<const float *, 2> reach;
    std::array<const uint8_t *, 2> flags; ///< 0 where a cell takes no part
};

/// One row of blocks of 2 x 2 cells.
struct BlockRow
{
    float *values;
    float *reach;
    uint8_t *valid;
};

/// Makes rows of blocks for the next coarser grid of the debanding.
class BlockJoiner
{
public:
    /// `width` cells make (width + 1) / 2 blocks; a last column without a neighbour stands for two.
    explicit BlockJoiner(int width);

    /// A block's value is the middle of what its four cells allow together, its reach half of that
    /// and at least a quarter of their difference. It is valid when all four are and differ by no
    /// more than the step.
    void join(const JoinRows &rows, float step, const BlockRow &blocks);

private:
    /// What the two cells of each column allow together; one column more than there are cells.
    struct Columns
    {
        std::vector<float> low;
        std::vector<float> high;
        std::vector<float> least;
        std::vector<float> most;
        std::vector<uint8_t> whole;
    };
    static void _joinColumns(const JoinRows &rows, Columns &columns, int count);
    static void _joinPairs(const Columns &columns, float step, const BlockRow &blocks, int count);

    size_t m_width;
    Columns m_columns;
};

} // namespace marlowen

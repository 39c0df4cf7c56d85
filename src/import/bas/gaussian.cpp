#include "import/bas/gaussian.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace marlowen {
namespace {

/// Sums are taken in pieces of rows that stay in the fastest cache.
constexpr int pieceCells = 256;
constexpr float smallestSigma = 0.2F;

/// One half of the kernel with its centre, sum of the whole 1.
std::vector<float> kernelOf(float sigma)
{
    const int reach = static_cast<int>(std::ceil(3.0F * sigma));
    std::vector<float> kernel;
    double sum = 0.0;
    for (int i = 0; i <= reach; ++i) {
        const double d = static_cast<double>(i) / static_cast<double>(sigma);
        kernel.push_back(static_cast<float>(std::exp(-0.5 * d * d)));
        sum += (i == 0 ? 1.0 : 2.0) * static_cast<double>(kernel.back());
    }
    for (float &value : kernel)
        value = static_cast<float>(static_cast<double>(value) / sum);
    return kernel;
}

CELL_LOOP void addPair(const float *one, const float *two, float weight, float *sums, int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x)
        sums[x] += weight * (one[x] + two[x]);
}

/// The kernel and its reach.
struct Kernel
{
    explicit Kernel(float sigma)
        : weights(kernelOf(sigma))
        , reach(static_cast<int>(weights.size()) - 1)
    {
    }
    std::vector<float> weights;
    int reach;
};

void blurAlong(float *row, int width, const Kernel &kernel)
{
    std::vector<float> bordered(static_cast<size_t>(width + 2 * kernel.reach));
    std::copy_n(row, width, bordered.data() + kernel.reach);
    std::fill_n(row, width, 0.0F);
    for (int first = 0; first < width; first += pieceCells) {
        const int count = std::min(pieceCells, width - first);
        const float *centre = bordered.data() + kernel.reach + first;
        addPair(centre, centre, 0.5F * kernel.weights[0], row + first, count);
        for (int i = 1; i <= kernel.reach; ++i)
            addPair(centre - i, centre + i, kernel.weights[static_cast<size_t>(i)], row + first,
                    count);
    }
}

/// Blurs the columns first..first + count, with a ring of the unblurred rows.
void blurAcross(FloatGrid &grid, int first, int count, const Kernel &kernel)
{
    const int ringRows = 2 * kernel.reach + 1;
    FloatGrid ring(count, ringRows);
    const auto ringRow = [&](int y) { return ring.row((y + ringRows) % ringRows); };
    for (int y = 0; y < grid.height + kernel.reach; ++y) {
        if (y < grid.height)
            std::copy_n(grid.row(y) + first, count, ringRow(y));
        else
            std::fill_n(ringRow(y), count, 0.0F);
        const int centre = y - kernel.reach;
        if (centre < 0)
            continue;
        float *out = grid.row(centre) + first;
        std::fill_n(out, count, 0.0F);
        addPair(ringRow(centre), ringRow(centre), 0.5F * kernel.weights[0], out, count);
        for (int i = 1; i <= kernel.reach; ++i)
            addPair(ringRow(centre - i), ringRow(centre + i),
                    kernel.weights[static_cast<size_t>(i)], out, count);
    }
}

} // namespace

bool blur(FloatGrid &grid, float sigmaCells, WorkMeter &meter)
{
    if (sigmaCells < smallestSigma)
        return true;
    const Kernel kernel(sigmaCells);
    const auto along = [&](int first, int end) {
        for (int y = first; y < end; ++y)
            blurAlong(grid.row(y), grid.width, kernel);
    };
    const auto across = [&](int first, int end) {
        for (int piece = first; piece < end; ++piece) {
            const int column = piece * pieceCells;
            blurAcross(grid, column, std::min(pieceCells, grid.width - column), kernel);
        }
    };
    const int pieces = (grid.width + pieceCells - 1) / pieceCells;
    return meter.rows(grid.height, grid.width, along) &&
           meter.rows(pieces, static_cast<qsizetype>(pieceCells) * grid.height, across);
}

} // namespace marlowen

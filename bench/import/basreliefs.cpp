#include "basreliefs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace marlowen::bas {
namespace {

struct Ellipsoid
{
    double x, y, z;
    double rx, ry, rz;
};

/// Skull, nose, eyes, mouth, ears and brow.
constexpr std::array<Ellipsoid, 8> parts{{{0, 0, 0, 0.75, 1, 0.8},
                                          {0, 0.1, 0.6, 0.14, 0.3, 0.35},
                                          {-0.28, -0.2, 0.62, 0.16, 0.08, 0.12},
                                          {0.28, -0.2, 0.62, 0.16, 0.08, 0.12},
                                          {0, 0.45, 0.62, 0.25, 0.1, 0.12},
                                          {-0.75, 0, 0, 0.1, 0.2, 0.3},
                                          {0.75, 0, 0, 0.1, 0.2, 0.3},
                                          {0, -0.35, 0.6, 0.5, 0.1, 0.12}}};

double headHeight(double x, double y)
{
    double height = -1.0;
    for (const Ellipsoid &part : parts) {
        const double dx = (x - part.x) / part.rx;
        const double dy = (y - part.y) / part.ry;
        const double rest = 1.0 - dx * dx - dy * dy;
        if (rest > 0.0)
            height = std::max(height, part.z + part.rz * std::sqrt(rest));
    }
    return height;
}

float at(const FloatGrid &grid, int x, int y)
{
    return grid.row(y)[x];
}

/// Calls visit(x, y) for all cells.
template <typename Visit>
void forAll(const FloatGrid &grid, Visit visit)
{
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x)
            visit(x, y);
}

double real(std::mt19937 &random, double low, double high)
{
    return low + (high - low) * static_cast<double>(random()) / 4294967295.0;
}

void addWaves(MadeRelief &relief, const Texture &texture, std::mt19937 &random)
{
    const double side = relief.form.width;
    for (int patch = 0; patch < 12; ++patch) {
        const double turn = real(random, 0, std::numbers::pi);
        const double perCell =
            2 * std::numbers::pi / real(random, texture.shortest, texture.longest);
        const double cx = real(random, 0.2, 0.8) * side;
        const double cy = real(random, 0.2, 0.8) * side;
        const double high = relief.depth * real(random, texture.least, 0.75 * texture.most);
        forAll(relief.form, [&](int x, int y) {
            const double r2 = ((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (0.0288 * side * side);
            const double along = x * std::cos(turn) + y * std::sin(turn);
            relief.texture.row(y)[x] +=
                static_cast<float>(high * std::exp(-r2) * std::sin(along * perCell));
        });
    }
}

void addDimples(MadeRelief &relief, const Texture &texture, std::mt19937 &random)
{
    const int side = relief.form.width;
    for (int dimple = 0; dimple < 150; ++dimple) {
        const int cx = static_cast<int>(real(random, 8, side - 8));
        const int cy = static_cast<int>(real(random, 8, side - 8));
        const double sigma = 0.25 * real(random, texture.shortest, texture.longest);
        const double deep = relief.depth * real(random, texture.least, texture.most);
        for (int y = std::max(0, cy - 9); y < std::min(side, cy + 10); ++y)
            for (int x = std::max(0, cx - 9); x < std::min(side, cx + 10); ++x)
                relief.texture.row(y)[x] -= static_cast<float>(
                    deep *
                    std::exp(-((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (2 * sigma * sigma)));
    }
}

/// A letter of bars in a box of 5 x 7 units: one bit a unit, the top row first.
constexpr std::array<uint64_t, 5> letters{0x7F0828087FULL, 0x7F4949494100ULL >> 8, 0x7F01010101ULL,
                                          0x7F09192946ULL, 0x0101017F0101ULL >> 8};

bool inLetter(int index, int column, int row)
{
    return (letters[static_cast<size_t>(index)] >> (8 * column + row)) & 1U;
}

} // namespace

FloatGrid MadeRelief::heights() const
{
    FloatGrid sum = form;
    for (size_t i = 0; i < sum.values.size(); ++i)
        sum.values[i] += texture.values[i];
    return sum;
}

MadeRelief head(int side, const Texture &texture)
{
    MadeRelief relief{FloatGrid(side, side), FloatGrid(side, side), 0.4 * side};
    const double scale = 2.3 / side;
    double highest = 0.0;
    forAll(relief.form, [&](int x, int y) {
        highest = std::max(highest, headHeight((x - side / 2) * scale, (y - side / 2) * scale));
    });
    forAll(relief.form, [&](int x, int y) {
        const double height = headHeight((x - side / 2) * scale, (y - side / 2) * scale);
        if (height >= 0.0)
            relief.form.row(y)[x] = static_cast<float>(relief.depth * (height / highest + 0.025));
    });
    std::mt19937 random(1);
    addWaves(relief, texture, random);
    addDimples(relief, texture, random);
    const float most = static_cast<float>(texture.most * relief.depth);
    forAll(relief.form, [&](int x, int y) {
        float &value = relief.texture.row(y)[x];
        value = at(relief.form, x, y) > 0.0F ? std::clamp(value, -most, most) : 0.0F;
    });
    return relief;
}

MadeRelief step(int side, float low, float high)
{
    MadeRelief relief{FloatGrid(side, side), FloatGrid(side, side), 100.0};
    const int corner = side / 6;
    forAll(relief.form, [&](int x, int y) {
        float height = x < side / 2 ? low : high;
        if (x < corner && y < corner)
            height = 20.0F + 100.0F * static_cast<float>(y) / static_cast<float>(corner - 1);
        relief.form.row(y)[x] = height;
    });
    return relief;
}

MadeRelief tiltedLettering(int side)
{
    MadeRelief relief{FloatGrid(side, side), FloatGrid(side, side), 0.4 * side};
    constexpr int unit = 6;
    forAll(relief.form, [&](int x, int y) {
        relief.form.row(y)[x] = 0.4F * static_cast<float>(x) + 0.01F * static_cast<float>(side);
        const int column = x / unit % 7 - 1;
        const int row = y / unit % 10 - 1;
        const int letter = (x / unit / 7 + 3 * (y / unit / 10)) % static_cast<int>(letters.size());
        if (column >= 0 && column < 5 && row >= 0 && row < 7 && inLetter(letter, column, row))
            relief.texture.row(y)[x] = static_cast<float>(0.04 * relief.depth);
    });
    return relief;
}

MadeRelief domes(int side)
{
    MadeRelief relief{FloatGrid(side, side), FloatGrid(side, side), 150.0};
    const double radius = side / 5.0;
    forAll(relief.form, [&](int x, int y) {
        const int place = (x < side / 2 ? 0 : 1) + (y < side / 2 ? 0 : 2);
        const double cx = side * (place % 2 == 0 ? 0.25 : 0.75);
        const double cy = side * (place < 2 ? 0.25 : 0.75);
        const double rest = 1.0 - ((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (radius * radius);
        relief.form.row(y)[x] =
            rest > 0.0 ? static_cast<float>(20 + 40 * place + 20 * std::sqrt(rest)) : 10.0F;
    });
    return relief;
}

MadeRelief noisyDome(int side)
{
    MadeRelief relief{FloatGrid(side, side), FloatGrid(side, side), 250.0};
    std::mt19937 random(5);
    forAll(relief.form, [&](int x, int y) {
        const double dx = 2.0 * x / side - 1.0;
        const double dy = 2.0 * y / side - 1.0;
        relief.form.row(y)[x] = static_cast<float>(260.0 - 125.0 * (dx * dx + dy * dy));
        const double u = real(random, 1e-9, 1.0);
        relief.texture.row(y)[x] = static_cast<float>(
            std::sqrt(-2.0 * std::log(u)) * std::cos(2 * std::numbers::pi * real(random, 0, 1)));
    });
    return relief;
}

FloatGrid largeRelief(int side)
{
    std::mt19937 random(1);
    FloatGrid grid(side, side);
    const double centre = side / 2.0;
    forAll(grid, [&](int x, int y) {
        const double r = std::hypot(x - centre, y - centre) / centre;
        if (r >= 0.95)
            return;
        const double bumps = std::sin(x * 0.3) * std::cos(y * 0.27) +
                             4 * std::sin(x * 0.031) * std::sin(y * 0.023) +
                             9 * std::cos(x * 0.007 + y * 0.003);
        grid.row(y)[x] =
            static_cast<float>(30 + 200 * std::sqrt(1 - r * r) + 2 * bumps + real(random, 0, 1));
    });
    return grid;
}

} // namespace marlowen::bas

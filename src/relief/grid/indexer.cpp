#include "relief/grid/indexer.h"

#include <QtGlobal>

#include <array>

namespace marlowen {

namespace {

struct Step
{
    int column;
    int row;
};

constexpr std::array<Step, 8> steps{
    {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}}};

/// Says where, which a release build's messages do not do by themselves.
[[noreturn]] void badNeighbor(const char *function)
{
    QMessageLogger("indexer", 0, function).fatal("Bad Neighbor!");
}

} // namespace

int Indexer::neighborOf(int index, Neighbors direction) const
{
    if (static_cast<uint32_t>(direction) >= steps.size())
        badNeighbor("int Indexer::neighborOf(int, Neighbors) const");
    const int64_t width = m_width;
    const int64_t height = m_height;
    if (index < 0 || index >= width * height)
        return -1;
    const int64_t column = index % width + steps[direction].column;
    const int64_t row = index / width + steps[direction].row;
    if (column < 0 || column >= width || row < 0 || row >= height)
        return -1;
    return static_cast<int>(row * width + column);
}

Indexer::Neighbors Indexer::oppositeNeighborOf(Neighbors direction) const
{
    static constexpr std::array<Neighbors, 8> opposites{
        Right, Left, Below, Above, BelowRight, BelowLeft, AboveRight, AboveLeft};
    if (static_cast<uint32_t>(direction) >= opposites.size())
        badNeighbor("Neighbors Indexer::oppositeNeighborOf(Neighbors) const");
    return opposites[direction];
}

bool Indexer::isNeighbor(int a, int b) const
{
    if (b < 0)
        return false;
    for (int direction = Left; direction <= BelowRight; ++direction) {
        if (neighborOf(a, static_cast<Neighbors>(direction)) == b)
            return true;
    }
    return false;
}

QPointF Indexer::offset(int a, int b) const
{
    if (!isNeighbor(a, b))
        return {0.0, 0.0};
    const int width = static_cast<int>(m_width);
    const int columns = b % width - a % width;
    const int rows = b / width - a / width;
    return {static_cast<double>(columns), static_cast<double>(rows)};
}

} // namespace marlowen

#pragma once

#include "base/largepages.h"

#include <QtGlobal>

#include <cstddef>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace marlowen {

/// A grid of values that lie elsewhere: row-major (index = row * width + column), row 0 first.
template <typename Value>
struct BasicGridView
{
    Value *values = nullptr;
    int width = 0;
    int height = 0;

    Value *row(int index) const
    {
        return values + static_cast<size_t>(index) * static_cast<size_t>(width);
    }
    qsizetype cells() const { return static_cast<qsizetype>(width) * height; }
    std::span<Value> span() const { return {values, static_cast<size_t>(cells())}; }

    operator BasicGridView<const Value>() const requires(!std::is_const_v<Value>)
    {
        return {values, width, height};
    }
};

using GridView = BasicGridView<const float>;
using MutableGridView = BasicGridView<float>;

/// A grid of 32-bit values on its own, in the order of a view: width * height values.
struct FloatGrid
{
    FloatGrid() = default;
    FloatGrid(int columns, int rows)
        : width(columns)
        , height(rows)
    {
        const size_t count = static_cast<size_t>(columns) * static_cast<size_t>(rows);
        values.reserve(count);
        wishLargePages(values.data(), count * sizeof(float));
        values.resize(count);
    }
    FloatGrid(int columns, int rows, std::vector<float> cells)
        : width(columns)
        , height(rows)
        , values(std::move(cells))
    {
    }

    float *row(int index) { return values.data() + static_cast<size_t>(index) * columns(); }
    const float *row(int index) const
    {
        return values.data() + static_cast<size_t>(index) * columns();
    }
    size_t columns() const { return static_cast<size_t>(width); }
    qsizetype cells() const { return static_cast<qsizetype>(width) * height; }
    GridView view() const { return {values.data(), width, height}; }
    MutableGridView view() { return {values.data(), width, height}; }

    int width = 0;
    int height = 0;
    std::vector<float> values;
};

} // namespace marlowen

#pragma once

#include "import/mesh/facetplanes.h"
#include "import/mesh/facetrows.h"

#include <span>

#if defined(__x86_64__) && !defined(__clang__)
/// A function for machines that work on eight doubles at once.
#define WIDE_CODE target("avx512f,avx512vl,avx512dq,avx512bw,bmi2")

namespace marlowen {

/// As CellsByFour, for such machines.
struct WideCells
{
    __attribute__((WIDE_CODE)) static void small(const FacetGrid &grid,
                                                 std::span<const FourFacets> fours, BatchPart part);
    __attribute__((WIDE_CODE)) static void broad(const FacetGrid &grid,
                                                 std::span<const FourPlanes> planes, size_t count);
};

} // namespace marlowen
#endif

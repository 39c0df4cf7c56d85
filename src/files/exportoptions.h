#pragma once

#include "base/fieldtable.h"

namespace marlowen {

/// How a mesh is written. A format takes the options that its row names (files/formats.h); the
/// others do not concern it.
struct ExportOptions
{
    int quality = 0; ///< 0 High: every grid triangle; 1 Medium, 2 Low: reduced
    double tolerance =
        0.0;        ///< of the reduction in inches, in place of the quality's; 0: none given
    int facets = 0; ///< at most so many; 0: no limit
    bool standardStl = false; ///< 32-bit facet count also in a reduced STL
    double solid = 0.0;       ///< base thickness in inches; 0: the surface alone

    bool operator==(const ExportOptions &) const = default;
};

/// The bits of a format's row, and of the fields below: which options it takes.
enum ExportOption : unsigned {
    TakesQuality = 1U << 0,
    TakesTolerance = 1U << 1,
    TakesFacets = 1U << 2,
    TakesStandardStl = 1U << 3,
    TakesSolid = 1U << 4,
};

/// One row an option; its flag is its ExportOption. A tolerance or thickness that is given is more
/// than 0.
FieldTable<ExportOptions> exportFields();

} // namespace marlowen

#include "files/export/stlexport.h"

#include "base/progress.h"

#include <QDataStream>

#include <limits>

namespace marlowen {

namespace {

/// Facets between two looks at the progress.
constexpr uint64_t facetsBetween = 65536;

bool writeCount(QDataStream &stream, uint64_t facets, StlCount count)
{
    if (count == StlCount::Wide)
        stream << static_cast<quint64>(facets);
    else if (facets <= std::numeric_limits<quint32>::max())
        stream << static_cast<quint32>(facets);
    else
        return false;
    return isOk(stream);
}

} // namespace

bool writeStl(QDataStream &stream, const ExportMesh &mesh, StlCount count, Progress &progress)
{
    writeStlHeader(stream, stlHeaderText());
    const uint64_t facets = mesh.count();
    if (!writeCount(stream, facets, count))
        return false;
    StlFacetBuffer buffer(stream, 1);
    uint64_t written = 0;
    const bool good = mesh.forEachFacet([&](const StlFacet &facet) {
        buffer.put(facet);
        buffer.flushWhenFull();
        if (++written % facetsBetween == 0)
            progress.advance(static_cast<double>(written) / static_cast<double>(facets));
        return isOk(stream) && (written % facetsBetween != 0 || !progress.cancelled());
    });
    buffer.flush();
    if (!good || !isOk(stream) || progress.cancelled())
        return false;
    progress.advance(1.0);
    return true;
}

} // namespace marlowen

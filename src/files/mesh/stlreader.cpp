#include "files/mesh/stlreader.h"

#include "files/mesh/facetcollector.h"
#include "files/mesh/piecework.h"
#include "files/mesh/stltext.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

namespace marlowen {

namespace {

static_assert(std::endian::native == std::endian::little, "facets are read as they lie in memory");

constexpr quint64 headerBytes = 80;
constexpr quint64 facetBytes = 50;
constexpr quint64 normalBytes = 12;
constexpr size_t blockFacets = FacetPiece::mostFacets;
/// Shortest text of a facet, about; the guess from the size of a text file.
constexpr qint64 textFacetBytes = 250;

/// Where the facets of a binary file lie.
struct Layout
{
    quint64 firstByte = headerBytes + 4;
    quint64 facets = 0;
    quint64 promised = 0; ///< by the count
    bool whole = false;   ///< the size fits the count
};

template <typename Count>
bool fits(quint64 size, Count count)
{
    const quint64 start = headerBytes + sizeof(Count);
    return size >= start && (size - start) % facetBytes == 0 &&
           (size - start) / facetBytes == count;
}

Layout layoutOf(const QByteArray &start, quint64 size)
{
    const auto number = [&start]<typename Count>(Count) -> Count {
        const auto end = static_cast<qsizetype>(headerBytes + sizeof(Count));
        return start.size() < end ? 0 : qFromLittleEndian<Count>(start.constData() + headerBytes);
    };
    const quint32 usual = number(quint32());
    const quint64 wide = number(quint64());
    if (fits(size, usual))
        return {headerBytes + 4, usual, usual, true};
    if (fits(size, wide))
        return {headerBytes + 8, wide, wide, true};
    Layout cut;
    const quint64 held = size < cut.firstByte ? 0 : (size - cut.firstByte) / facetBytes;
    // Writers that cannot go back to fill it in leave the count at 0.
    cut.facets = usual == 0 ? held : std::min<quint64>(usual, held);
    cut.promised = usual;
    return cut;
}

bool isText(const QByteArray &start)
{
    const QByteArray text = start.startsWith("\xEF\xBB\xBF") ? start.mid(3) : start;
    return text.trimmed().left(5).toLower() == "solid";
}

/// Facets of the file on their way.
struct Slot
{
    std::vector<char> bytes;
    size_t facets = 0; ///< in the bytes
    FacetPiece piece;
    std::vector<FacetFault> faults; ///< of the facets that are left out
};

/// Fills the slot with at most `wanted` facets, as far as the device gives.
void readFacets(QIODevice &device, Slot &slot, quint64 wanted)
{
    slot.bytes.resize(std::min<quint64>(blockFacets, wanted) * facetBytes);
    quint64 filled = 0;
    while (filled < slot.bytes.size()) {
        const qint64 got = device.read(slot.bytes.data() + filled,
                                       static_cast<qint64>(slot.bytes.size() - filled));
        if (got <= 0)
            break;
        filled += static_cast<quint64>(got);
    }
    slot.facets = filled / facetBytes;
}

void weldFacets(Slot &slot)
{
    slot.piece.clear();
    slot.faults.clear();
    for (size_t i = 0; i < slot.facets; ++i) {
        FacetPiece::Facet facet;
        std::memcpy(facet.data(), slot.bytes.data() + i * facetBytes + normalBytes, sizeof(facet));
        const FacetFault fault = slot.piece.add(facet);
        if (fault != FacetFault::None)
            slot.faults.push_back(fault);
    }
}

void readBinary(QIODevice &device, Progress &progress, const Layout &layout, ReadMesh &into)
{
    FacetCollector facets(into.mesh, into.problems, layout.facets);
    std::vector<Slot> pieces(pieceSlots());
    quint64 done = 0;
    if (layout.facets > 0)
        device.seek(static_cast<qint64>(layout.firstByte));
    PieceSteps steps;
    steps.fill = [&](size_t slot) {
        if (done == layout.facets || progress.cancelled())
            return false;
        readFacets(device, pieces[slot], layout.facets - done);
        done += pieces[slot].facets;
        progress.advance(static_cast<double>(done) / static_cast<double>(layout.facets));
        return pieces[slot].facets > 0;
    };
    steps.work = [&](size_t slot) { weldFacets(pieces[slot]); };
    steps.take = [&](size_t slot) {
        for (const FacetFault fault : pieces[slot].faults)
            into.problems.add(facetProblem(fault));
        if (!progress.cancelled())
            facets.take(pieces[slot].piece);
    };
    workThroughPieces(steps);
    if (progress.cancelled() || (layout.whole && done == layout.facets))
        return;
    into.problems.add("STL: damaged file, facets found and promised: ",
                      std::to_string(done) + ", " + std::to_string(layout.promised));
}

} // namespace

ReadMesh readStl(QIODevice &device, Progress &progress)
{
    constexpr qint64 peeked = 512;
    ReadMesh read;
    const QByteArray start = device.peek(peeked);
    const auto size = static_cast<quint64>(std::max<qint64>(0, device.size()));
    const Layout layout = layoutOf(start, size);
    if (layout.whole || !isText(start)) {
        readBinary(device, progress, layout, read);
        return read;
    }
    FacetCollector facets(read.mesh, read.problems, size / textFacetBytes);
    readTextStl(device, progress, facets, read.problems);
    return read;
}

} // namespace marlowen

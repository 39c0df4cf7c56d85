#include "files/mesh/stlreader.h"

#include "files/mesh/facetcollector.h"
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
constexpr size_t blockFacets = 4096;
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

std::array<CornerWeld::Corner, 3> cornersOf(const char *facet)
{
    std::array<CornerWeld::Corner, 3> corners;
    std::memcpy(corners.data(), facet + normalBytes, sizeof(corners));
    return corners;
}

/// Fills the block as far as the device gives; returns whole facets.
size_t readFacets(QIODevice &device, std::vector<char> &block, quint64 left)
{
    const quint64 wanted = std::min<quint64>(block.size(), left * facetBytes);
    quint64 filled = 0;
    while (filled < wanted) {
        const qint64 got = device.read(block.data() + filled, static_cast<qint64>(wanted - filled));
        if (got <= 0)
            break;
        filled += static_cast<quint64>(got);
    }
    return filled / facetBytes;
}

void readBinary(QIODevice &device, Progress &progress, const Layout &layout, ReadMesh &into)
{
    FacetCollector facets(into.mesh, into.problems, layout.facets);
    std::vector<char> block(blockFacets * facetBytes);
    quint64 done = 0;
    if (layout.facets > 0)
        device.seek(static_cast<qint64>(layout.firstByte));
    while (done < layout.facets && !progress.cancelled()) {
        const size_t count = readFacets(device, block, layout.facets - done);
        for (size_t i = 0; i < count; ++i)
            facets.add(cornersOf(block.data() + i * facetBytes));
        done += count;
        progress.advance(static_cast<double>(done) / static_cast<double>(layout.facets));
        if (count == 0)
            break;
    }
    facets.flush();
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

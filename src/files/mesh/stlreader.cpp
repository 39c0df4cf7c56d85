#include "files/mesh/stlreader.h"

#include "files/mesh/facetcollector.h"
#include "files/mesh/piecework.h"
#include "files/mesh/stltext.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <mutex>
#include <span>
#include <string>
#include <utility>

namespace marlowen {

namespace {

static_assert(std::endian::native == std::endian::little, "facets are read as they lie in memory");

constexpr quint64 headerBytes = 80;
constexpr quint64 facetBytes = FacetPiece::recordBytes;
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
    quint64 first = 0; ///< of them
    size_t wanted = 0; ///< how many
    size_t found = 0;  ///< fewer where the file ends early
    std::vector<char> bytes;
    FacetPiece piece;
    std::vector<FacetFault> faults; ///< of the facets that are left out
};

/// The bytes of a device for several threads.
class SharedDevice
{
public:
    explicit SharedDevice(QIODevice &device)
        : m_device(device)
    {
    }

    /// Fills the buffer from byte `first` on, as far as the device gives; returns how far.
    size_t read(quint64 first, std::span<char> buffer)
    {
        const std::lock_guard guard(m_mutex);
        size_t filled = 0;
        if (!m_device.seek(static_cast<qint64>(first)))
            return filled;
        while (filled < buffer.size()) {
            const qint64 got =
                m_device.read(buffer.data() + filled, static_cast<qint64>(buffer.size() - filled));
            if (got <= 0)
                break;
            filled += static_cast<size_t>(got);
        }
        return filled;
    }

private:
    QIODevice &m_device;
    std::mutex m_mutex;
};

void readBinary(QIODevice &device, Progress &progress, const Layout &layout, ReadMesh &into)
{
    FacetCollector facets(into.mesh, into.problems, layout.facets);
    std::vector<Slot> pieces(pieceSlots());
    SharedDevice shared(device);
    quint64 begun = 0;
    quint64 done = 0;
    bool ended = false;
    PieceSteps steps;
    steps.fill = [&](size_t slot) {
        if (begun == layout.facets || ended || progress.cancelled())
            return false;
        const size_t wanted = std::min<quint64>(blockFacets, layout.facets - begun);
        pieces[slot].first = std::exchange(begun, begun + wanted);
        pieces[slot].wanted = wanted;
        return true;
    };
    // Reading is work too: the thread that takes the pieces has the most to do.
    steps.work = [&](size_t slot) {
        Slot &mine = pieces[slot];
        mine.bytes.resize(mine.wanted * facetBytes);
        mine.found =
            shared.read(layout.firstByte + mine.first * facetBytes, mine.bytes) / facetBytes;
        mine.piece.clear();
        mine.faults.clear();
        mine.piece.addRecords({mine.bytes.data(), mine.found * facetBytes}, mine.faults);
    };
    steps.take = [&](size_t slot) {
        if (ended || progress.cancelled())
            return;
        const Slot &taken = pieces[slot];
        for (const FacetFault fault : taken.faults)
            into.problems.add(facetProblem(fault));
        facets.take(taken.piece);
        done += taken.found;
        ended = taken.found < taken.wanted;
        progress.advance(static_cast<double>(done) / static_cast<double>(layout.facets));
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

#pragma once

#include <QByteArray>

#include <array>
#include <cstddef>
#include <vector>

class QDataStream;

namespace marlowen {

/// One facet of a binary STL.
struct StlFacet
{
    std::array<std::array<double, 3>, 3> vertices;
    std::array<double, 3> normal;
};

/// What the header of the program's files says: its name and version.
QByteArray stlHeaderText();

/// Sets the stream to little-endian and single precision and writes the 80 bytes in front of the
/// count: the text, cut or followed by zeros.
void writeStlHeader(QDataStream &stream, const QByteArray &text);

bool isOk(const QDataStream &stream);

/// Facet records of 50 bytes that leave in large blocks: twelve floats (normal, three vertices) and
/// two bytes that are 0.
class StlFacetBuffer
{
public:
    /// Room for that many records behind a block that is full.
    StlFacetBuffer(QDataStream &stream, size_t largestAddition);

    /// Where the next record's floats go; take() then counts it.
    char *next() { return m_bytes.data() + m_used; }
    void take() { m_used += recordBytes; }
    /// Adds a facet, narrowed to floats.
    void put(const StlFacet &facet);
    void flushWhenFull()
    {
        if (m_used >= flushBytes)
            flush();
    }
    void flush();

private:
    static constexpr size_t recordBytes = 50;
    static constexpr size_t flushBytes = 256 * 1024;

    QDataStream &m_stream;
    std::vector<char> m_bytes;
    size_t m_used = 0;
};

} // namespace marlowen

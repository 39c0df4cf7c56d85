#include "files/stlframe.h"

#include "base/version.h"

#include <QDataStream>

#include <bit>
#include <cstring>

namespace marlowen {

namespace {

static_assert(std::endian::native == std::endian::little,
              "facets are copied as they lie in memory");

constexpr int headerBytes = 80;

} // namespace

QByteArray stlHeaderText()
{
    return QByteArray(productName) + ' ' + versionText + ", binary STL in inches";
}

void writeStlHeader(QDataStream &stream, const QByteArray &text)
{
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    QByteArray header = text.left(headerBytes);
    header.append(headerBytes - header.size(), '\0');
    stream.writeRawData(header.constData(), headerBytes);
}

bool isOk(const QDataStream &stream)
{
    return stream.status() == QDataStream::Ok;
}

StlFacetBuffer::StlFacetBuffer(QDataStream &stream, size_t largestAddition)
    : m_stream(stream)
    , m_bytes((flushBytes / recordBytes + largestAddition + 1) * recordBytes)
{
}

void StlFacetBuffer::put(const StlFacet &facet)
{
    std::array<float, 12> record{};
    auto out = record.begin();
    const auto narrow = [&out](const std::array<double, 3> &from) {
        for (const double value : from)
            *out++ = static_cast<float>(value);
    };
    narrow(facet.normal);
    for (const auto &vertex : facet.vertices)
        narrow(vertex);
    std::memcpy(next(), record.data(), sizeof(record));
    take();
}

void StlFacetBuffer::flush()
{
    m_stream.writeRawData(m_bytes.data(), static_cast<int>(m_used));
    m_used = 0;
}

} // namespace marlowen

#pragma once

#include "files/mesh/objfilereader.h"
#include "files/mesh/stlreader.h"

#include <QBuffer>
#include <QtEndian>

#include <limits>

/// Meshes as literal text and the result of reading them.

inline marlowen::ReadMesh objOf(const QByteArray &text,
                                marlowen::ObjFileReader::RelativeIndices indices =
                                    marlowen::ObjFileReader::RelativeIndices::Literal)
{
    QByteArray bytes = text;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    marlowen::Progress silent;
    marlowen::ObjFileReader reader(indices);
    reader.read(buffer, silent);
    return {reader.takeMesh(), reader.problems()};
}

inline marlowen::ReadMesh stlOf(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    marlowen::Progress silent;
    return marlowen::readStl(buffer, silent);
}

using FacetCorners = std::array<float, 9>;

/// A binary STL; `promised` is the count it states, of 32 bits or of 64.
inline QByteArray binaryStl(const std::vector<FacetCorners> &facets, quint64 promised,
                            bool wide = false, const QByteArray &header = "made by hand")
{
    QByteArray bytes = header.leftJustified(80, '\0', true);
    std::array<char, 8> count{};
    qToLittleEndian(promised, count.data());
    bytes.append(count.data(), wide ? 8 : 4);
    for (const FacetCorners &facet : facets) {
        bytes.append(12, '\0');
        bytes.append(reinterpret_cast<const char *>(facet.data()), sizeof(facet));
        bytes.append(2, '\0');
    }
    return bytes;
}

inline const QByteArray square("v 0 0 0\nv 4 0 0\nv 4 4 0\nv 0 4 0\n");

inline const std::vector<FacetCorners> twoFacets{{0, 0, 0, 1, 0, 0, 0, 1, 0},
                                                 {0, 1, 0, 1, 0, 0, 1, 1, 2}};

/// A facet of a text STL.
inline QString textFacet(const QString &third = QStringLiteral("0 1 0"))
{
    return QStringLiteral(
               "facet normal 0 0 1\n outer loop\n vertex 0 0 0\n vertex 1 0 0\n vertex ") +
           third + QStringLiteral("\n endloop\nendfacet\n");
}

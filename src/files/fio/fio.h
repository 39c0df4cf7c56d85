#pragma once

#include "files/fio/fiostream.h"

#include <QFont>
#include <QImage>
#include <QRectF>

#include <array>
#include <concepts>
#include <map>
#include <optional>
#include <utility>

namespace marlowen {

template <typename T, typename... Types>
concept OneOf = (std::same_as<T, Types> || ...);

/// The values of a container other than raw data. On disk (integers most significant byte first):
/// - quint8, quint16, qint16, quint32: 1, 2, 2, 4 bytes; bool: 1 byte, any but 0 reads as true
/// - QString: 16-bit count of bytes, then UTF-8; FF FF for a null string; at most 65530 bytes
/// - double, float: a QString of its decimal text with 10 significant digits
/// - QRectF: left, top, width, height; std::array<double, 4>: the four in order
/// - QFont: a QString of QFont::toString()
/// - QImage: 32-bit count of bytes, then a PNG
template <typename T>
concept FioValue = OneOf<T, quint8, quint16, qint16, quint32, bool, QString, double, float, QRectF,
                         std::array<double, 4>, QFont, QImage>;

/// Reads and writes tagged container files: typed values, magic and version, and references by
/// which an object that is referred to several times is stored once.
class Fio : public FioStream
{
public:
    template <FioValue T>
    bool write(const T &value);
    /// A failed read leaves the value unchanged.
    template <FioValue T>
    bool read(T &value);

    bool writeMagic(quint16 magic, quint16 version);
    /// The version that was read, 1 or more; 0 when the magic is another one, the version exceeds
    /// the highest accepted one, or the file ends.
    quint16 readVerifyMagic(quint16 magic, quint16 highestVersion);

    /// The index of an object in the reference table, in the order of first reference; entered when
    /// it is new. Nothing for a null object.
    std::optional<quint32> getRef(quint16 typeId, const void *object);
    /// Writes the index; `bodyWritten` is set when the object's body follows an earlier
    /// reference. When it does not, the caller writes the body next.
    bool writeRef(quint16 typeId, const void *object, bool &bodyWritten);

    /// Reads a reference. `*out` becomes the object, or null when a new one follows: the caller
    /// creates it and enters it with addTag() before it reads its body.
    bool readTag(quint16 typeId, void **out);
    /// Enters a new object while reading and returns its index.
    std::optional<quint32> addTag(quint16 typeId, void *object);
    /// Replaces the object of an index.
    bool setTag(quint32 index, quint16 typeId, void *object);
    /// Whether the table has an object under this key: its address while writing, its index while
    /// reading.
    bool hasTag(quint16 typeId, quint64 key) const;

    /// Whether files can be made in the folder of `path`; tries it with "QEV_TEMP_FILE".
    static bool folderIsWritable(const QString &path);

protected:
    void clearReferences() override { m_references.clear(); }

private:
    struct Reference
    {
        quint16 typeId = 0;
        void *object = nullptr;
        quint32 index = 0;
        bool written = false;
    };
    using Key = std::pair<quint64, quint16>;

    Reference *_find(quint64 key, quint16 typeId);
    Reference &_enter(quint64 key, quint16 typeId, void *object);

    std::map<Key, Reference> m_references;
};

} // namespace marlowen

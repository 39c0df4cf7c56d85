#pragma once

#include "import/importsettings.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <type_traits>

namespace marlowen {

/// The file of a journal: a JournalHead, then records. A record is a RecordHead, `metaBytes` of
/// small values, `dataBytes` of floats or runs, and the CRC-32 of all of that in 4 bytes. Numbers
/// are those of the machine; the head shows a different byte order.

struct JournalHead
{
    char name[16] = {'M', 'a', 'r', 'l', 'o', 'w', 'e', 'n',
                     ' ', 'j', 'o', 'u', 'r', 'n', 'a', 'l'};
    uint32_t version = 1;
    uint32_t byteOrder = 0x01020304;
    bool operator==(const JournalHead &) const = default;
};

enum class RecordType : uint8_t {
    Base = 1,  ///< the whole relief; always the first record and only that
    Heights,   ///< an undo event of heights: PatchMeta and name; the values after it
    Mask,      ///< the same of the mask
    Resize,    ///< an undo event: SizeMeta and name
    ZScale,    ///< an undo event: a double, the new value, and name
    Undo,      ///< of the group that the history of the journal stands at
    Redo,      ///< the same forward
    Selection, ///< one byte, whether it is active; EqualRun for the whole layer or nothing
    Import,    ///< ImportMeta and settings; the values of a new bas-relief or nothing
    Accept,    ///< the end of the import
};

enum RecordFlag : uint8_t {
    EndsStep = 1U << 0,   ///< the last record of a step; steps are restored whole
    Unrecorded = 1U << 1, ///< no undo event: the history ends here
};

struct RecordHead
{
    static constexpr uint32_t expectedMark = 0x6352724dU;

    uint32_t mark = expectedMark;
    RecordType type = RecordType::Base;
    uint8_t flags = 0;
    uint16_t metaBytes = 0;
    uint64_t dataBytes = 0;

    bool has(RecordFlag flag) const { return (flags & flag) != 0; }
    uint64_t bytes() const { return sizeof(RecordHead) + metaBytes + dataBytes + sizeof(uint32_t); }
    /// Whether it is a step of the history.
    bool isEvent() const { return type >= RecordType::Heights && type <= RecordType::ZScale; }
};
static_assert(sizeof(RecordHead) == 16 && std::is_trivially_copyable_v<RecordHead>);

/// A rectangle of cells.
struct PatchMeta
{
    int32_t left = 0;
    int32_t top = 0;
    int32_t width = 0;
    int32_t height = 0;
    int64_t cells() const { return int64_t{width} * height; }
};

struct SizeMeta
{
    int32_t width = 0;
    int32_t height = 0;
};

/// Cells of the selection with the same value, row after row.
struct EqualRun
{
    uint32_t count = 0;
    float value = 0.0F;
};

struct ImportMeta
{
    uint8_t dirty = 0;      ///< the bas-relief does not reflect the settings
    uint8_t recomputed = 0; ///< the heights follow the settings
    uint8_t shows = 0;      ///< the heights are the last bas-relief
};

/// The bytes of a plain value, followed by a name cut to so few bytes that a record of a step costs
/// at most 64 in addition to its data.
QByteArray packed(const void *value, qsizetype bytes, const QString &name);
template <typename Value>
QByteArray packed(const Value &value, const QString &name = {})
{
    static_assert(std::is_trivially_copyable_v<Value>);
    return packed(&value, sizeof value, name);
}

/// A plain value at the start of the bytes; nothing when they are too few.
template <typename Value>
std::optional<Value> unpacked(const QByteArray &bytes)
{
    static_assert(std::is_trivially_copyable_v<Value>);
    Value value{};
    if (bytes.size() < qsizetype{sizeof value})
        return {};
    memcpy(&value, bytes.constData(), sizeof value);
    return value;
}

/// The name behind a value of type Value.
template <typename Value>
QString nameAfter(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.mid(sizeof(Value)));
}

/// Settings by the keys of their fields; unknown keys are ignored, missing ones keep their default.
QByteArray packedSettings(const ImportSettings &settings);
ImportSettings unpackedSettings(const QByteArray &bytes);

} // namespace marlowen

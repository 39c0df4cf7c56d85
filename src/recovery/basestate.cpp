#include "recovery/basestate.h"

#include "import/importsource.h"
#include "recovery/journalreader.h"

#include <QDataStream>

#include <array>
#include <cstring>
#include <limits>

namespace marlowen {

namespace {

/// The data after the meta values, in this order: whole layers, then the import.
enum Layer : unsigned {
    Heights = 1U << 0,
    Reference = 1U << 1,
    Mask = 1U << 2,
    Selection = 1U << 3,
    ReferenceIsHeights = 1U << 4, ///< and does not follow
    Import = 1U << 5,
    BasRelief = 1U << 6,
};

constexpr qint64 floatBytes = sizeof(float);

QByteArrayView bytesOf(const float *values, qint64 count)
{
    return {reinterpret_cast<const char *>(values), count * floatBytes};
}

GridLayer copyOf(const GridLayer &layer)
{
    if (!layer.written())
        return {};
    GridLayer copy(layer.size());
    copy.copyFrom(layer);
    return copy;
}

/// Every scalar, in the order of the file.
template <typename Stream, typename State>
void streamScalars(Stream &stream, State &state)
{
    const auto each = [&stream](auto &...values) {
        if constexpr (std::is_const_v<State>)
            (stream << ... << values);
        else
            (stream >> ... >> values);
    };
    each(state.width, state.height, state.zScale, state.rangeMinimum, state.rangeMaximum,
         state.sampleHeight, state.selectionActive, state.symmetryX, state.symmetryY, state.invert,
         state.modified, state.steps, state.file, state.importDirty, state.importShows,
         state.isPicture);
}

bool sameValues(const GridLayer &a, const GridLayer &b)
{
    return a.size() > 0 && a.size() == b.size() &&
           std::memcmp(a.constData(), b.constData(), static_cast<size_t>(a.size() * floatBytes)) ==
               0;
}

unsigned layersOf(const BaseState &base)
{
    const bool same = sameValues(base.heights, base.reference);
    unsigned layers = same ? ReferenceIsHeights : 0U;
    layers |= base.heights.size() > 0 ? Heights : 0U;
    layers |= base.reference.size() > 0 && !same ? Reference : 0U;
    layers |= base.mask.size() > 0 ? Mask : 0U;
    layers |= base.selection.size() > 0 ? Selection : 0U;
    layers |= base.importValues ? Import : 0U;
    layers |= base.basRelief.empty() ? 0U : BasRelief;
    return layers;
}

uint64_t dataBytesOf(const BaseHead &head)
{
    const auto cells =
        static_cast<uint64_t>(head.state.width) * static_cast<uint64_t>(head.state.height);
    const auto importCells =
        static_cast<uint64_t>(head.importWidth) * static_cast<uint64_t>(head.importHeight);
    uint64_t count = 0;
    for (const unsigned layer : {Heights, Reference, Mask, Selection})
        count += (head.layers & layer) != 0 ? cells : 0;
    for (const unsigned layer : {Import, BasRelief})
        count += (head.layers & layer) != 0 ? importCells : 0;
    return count * floatBytes;
}

bool fitsGrid(int width, int height)
{
    return width >= 1 && height >= 1 && int64_t{width} * height <= std::numeric_limits<int>::max();
}

bool readLayers(JournalReader &reader, const BaseHead &head, Relief &relief)
{
    const std::array<std::pair<unsigned, GridLayer *>, 4> layers{
        {{Heights, &relief.heights()},
         {Reference, &relief.referenceLayer()},
         {Mask, &relief.maskLayer()},
         {Selection, &relief.selectionLayer()}}};
    for (const auto &[bit, layer] : layers) {
        if ((head.layers & bit) != 0 &&
            !reader.read(layer->data(), static_cast<uint64_t>(relief.cells() * floatBytes)))
            return false;
    }
    if ((head.layers & ReferenceIsHeights) != 0)
        relief.referenceLayer().copyFrom(relief.heights());
    return true;
}

bool readImport(JournalReader &reader, const BaseHead &head, Relief &relief)
{
    if ((head.layers & Import) == 0)
        return true;
    FloatGrid values(head.importWidth, head.importHeight);
    const auto bytes = static_cast<uint64_t>(values.cells() * floatBytes);
    if (!reader.read(values.values.data(), bytes))
        return false;
    auto source = std::make_unique<ImportSource>(std::move(values), head.state.importSettings);
    source->dirty = head.state.importDirty;
    source->showsBasRelief = head.state.importShows;
    source->isPicture = head.state.isPicture;
    if ((head.layers & BasRelief) != 0) {
        source->lastBasRelief.resize(source->values().span().size());
        if (!reader.read(source->lastBasRelief.data(), bytes))
            return false;
    }
    relief.setSource(std::move(source));
    return true;
}

} // namespace

int64_t BaseState::bytes() const
{
    int64_t count = heights.size() + reference.size() + mask.size() + selection.size() +
                    static_cast<int64_t>(basRelief.size());
    if (importValues)
        count += importValues->cells();
    return count * floatBytes;
}

BaseState baseOf(const Relief &relief)
{
    BaseState base;
    base.width = relief.width();
    base.height = relief.height();
    base.zScale = relief.zScale;
    base.rangeMinimum = relief.rangeMinimum;
    base.rangeMaximum = relief.rangeMaximum;
    base.sampleHeight = relief.sampleHeight;
    base.selectionActive = relief.selectionActive;
    base.symmetryX = relief.symmetryX;
    base.symmetryY = relief.symmetryY;
    base.invert = relief.invert;
    base.heights = copyOf(relief.heights());
    base.reference = copyOf(relief.referenceLayer());
    base.mask = copyOf(relief.maskLayer());
    base.selection = copyOf(relief.selectionLayer());
    if (const auto *source = dynamic_cast<const ImportSource *>(relief.source())) {
        base.importValues = source->sharedValues();
        base.importSettings = source->settings();
        base.importDirty = source->dirty;
        base.importShows = source->showsBasRelief;
        base.isPicture = source->isPicture;
        base.basRelief = source->lastBasRelief;
    }
    return base;
}

bool appendBase(JournalFile &file, const BaseState &base)
{
    const quint32 layers = layersOf(base);
    QByteArray meta;
    QDataStream stream(&meta, QIODevice::WriteOnly);
    streamScalars(stream, base);
    stream << layers << (base.importValues ? base.importValues->width : 0)
           << (base.importValues ? base.importValues->height : 0)
           << packedSettings(base.importSettings);
    std::vector<QByteArrayView> parts;
    for (const auto &[bit, layer] :
         std::array<std::pair<unsigned, const GridLayer *>, 4>{{{Heights, &base.heights},
                                                                {Reference, &base.reference},
                                                                {Mask, &base.mask},
                                                                {Selection, &base.selection}}}) {
        if ((layers & bit) != 0)
            parts.push_back(bytesOf(layer->constData(), layer->size()));
    }
    if (base.importValues)
        parts.push_back(bytesOf(base.importValues->values, base.importValues->cells()));
    if (!base.basRelief.empty())
        parts.push_back(bytesOf(base.basRelief.data(), static_cast<qint64>(base.basRelief.size())));
    return file.append({.type = RecordType::Base, .flags = EndsStep}, meta, parts);
}

std::optional<BaseHead> readBaseHead(const JournalReader &reader)
{
    if (reader.head().type != RecordType::Base)
        return {};
    BaseHead head;
    QDataStream stream(reader.meta());
    quint32 layers = 0;
    QByteArray settings;
    streamScalars(stream, head.state);
    stream >> layers >> head.importWidth >> head.importHeight >> settings;
    head.layers = layers;
    head.state.importSettings = unpackedSettings(settings);
    const bool import = (layers & (Import | BasRelief)) != 0;
    if (stream.status() != QDataStream::Ok || !fitsGrid(head.state.width, head.state.height) ||
        (import && !fitsGrid(head.importWidth, head.importHeight)))
        return {};
    head.dataBytes = dataBytesOf(head);
    if (head.dataBytes != reader.head().dataBytes)
        return {};
    return head;
}

std::unique_ptr<Relief> readBase(JournalReader &reader, BaseHead &head)
{
    const BaseState &state = head.state;
    auto relief = std::make_unique<Relief>(state.width, state.height);
    if (!readLayers(reader, head, *relief) || !readImport(reader, head, *relief) ||
        !reader.isWhole())
        return {};
    relief->zScale = state.zScale;
    relief->rangeMinimum = state.rangeMinimum;
    relief->rangeMaximum = state.rangeMaximum;
    relief->sampleHeight = state.sampleHeight;
    relief->selectionActive = state.selectionActive;
    relief->symmetryX = state.symmetryX;
    relief->symmetryY = state.symmetryY;
    relief->invert = state.invert;
    return relief;
}

} // namespace marlowen

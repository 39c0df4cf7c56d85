#include "recovery/replay.h"

#include "import/importsource.h"
#include "relief/operations/operations.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace marlowen {

bool Replay::take(JournalReader &reader)
{
    const RecordHead &head = reader.head();
    if (!relief)
        return _takeBase(reader);
    if (head.type != RecordType::Import)
        finish();
    if (head.isEvent())
        return _takeEvent(reader);
    if (!m_events.empty())
        return false;
    bool taken = false;
    if (head.type == RecordType::Selection)
        taken = _takeSelection(reader);
    else if (head.type == RecordType::Import)
        taken = _takeImport(reader);
    else
        taken = _takeOther(reader);
    if (taken)
        _stepEnded(reader);
    return taken;
}

void Replay::_stepEnded(const JournalReader &reader)
{
    m_goodEnd = reader.end();
    m_steps += reader.head().type != RecordType::Selection ? 1 : 0;
}

bool Replay::_takeBase(JournalReader &reader)
{
    std::optional<BaseHead> head = readBaseHead(reader);
    if (!head)
        return false;
    relief = readBase(reader, *head);
    if (!relief)
        return false;
    m_base = std::move(head->state);
    m_goodEnd = reader.end();
    return true;
}

bool Replay::_takeEvent(JournalReader &reader)
{
    Event event{reader.head(), {}, {}, 1.0, {}};
    const QByteArray &meta = reader.meta();
    bool good = true;
    if (event.head.type == RecordType::Resize) {
        event.size = unpacked<SizeMeta>(meta).value_or(SizeMeta());
        event.name = nameAfter<SizeMeta>(meta);
    } else if (event.head.type == RecordType::ZScale) {
        event.zScale = unpacked<double>(meta).value_or(std::nan(""));
        event.name = nameAfter<double>(meta);
    } else {
        good = _takePatch(reader, event);
    }
    if (!good || !reader.isWhole())
        return false;
    m_events.push_back(std::move(event));
    if (!reader.head().has(EndsStep))
        return true;
    std::vector<Event> events = std::exchange(m_events, {});
    if (!std::ranges::all_of(events, [this](Event &each) { return _apply(each); }))
        return false;
    if (reader.head().has(Unrecorded))
        history.clear();
    else
        history.markGroupEnd();
    _stepEnded(reader);
    return true;
}

bool Replay::_takePatch(JournalReader &reader, Event &event) const
{
    const std::optional<PatchMeta> meta = unpacked<PatchMeta>(reader.meta());
    // A step may resize before; then the sizes are compared once more when the event is applied.
    if (!meta || meta->width < 1 || meta->height < 1 || meta->left < 0 || meta->top < 0 ||
        static_cast<uint64_t>(meta->cells()) * sizeof(float) != reader.head().dataBytes)
        return false;
    event.name = nameAfter<PatchMeta>(reader.meta());
    const QRect box(meta->left, meta->top, meta->width, meta->height);
    event.patch = {QRegion(box),
                   meta->left,
                   meta->top,
                   meta->left + meta->width,
                   meta->top + meta->height,
                   GridLayer(meta->cells())};
    return reader.read(event.patch.values.data(), reader.head().dataBytes);
}

bool Replay::_apply(Event &event)
{
    const EditRun run(m_keepHistory ? &history : nullptr, nullptr, false);
    switch (event.head.type) {
    case RecordType::Resize:
        if (!resize(*relief, event.size.width, event.size.height, run))
            return false;
        break;
    case RecordType::ZScale:
        if (!std::isfinite(event.zScale))
            return false;
        setZScale(*relief, event.zScale, run);
        break;
    default:
        if (!relief->rect().contains(event.patch.region.boundingRect()))
            return false;
        _applyPatch(event);
        break;
    }
    if (m_keepHistory)
        history.nameStep(event.name);
    return true;
}

void Replay::_applyPatch(Event &event)
{
    const bool mask = event.head.type == RecordType::Mask;
    GridLayer &layer = mask ? relief->maskLayer() : relief->heights();
    const int width = relief->width();
    if (!m_keepHistory)
        return event.patch.pasteInto(layer, width);
    Patch before = copyPatch(layer, width, event.patch.region);
    event.patch.pasteInto(layer, width);
    if (mask)
        history.push(
            std::make_unique<SculptMaskEvent>(*relief, std::move(before), std::move(event.patch)));
    else
        history.push(std::make_unique<SculptModifyEvent>(*relief, std::move(before),
                                                         std::move(event.patch)));
}

bool Replay::_takeSelection(JournalReader &reader)
{
    const std::optional<uint8_t> active = unpacked<uint8_t>(reader.meta());
    std::vector<EqualRun> runs(reader.head().dataBytes / sizeof(EqualRun));
    if (!active || !reader.read(runs.data(), runs.size() * sizeof(EqualRun)) || !reader.isWhole())
        return false;
    int64_t cells = 0;
    for (const EqualRun &run : runs)
        cells += run.count;
    // It may be of a grid that a step in between has replaced; another follows then.
    if (cells != 0 && cells != relief->cells())
        return true;
    relief->selectionActive = *active != 0;
    if (cells == 0) {
        relief->selectionLayer().clear();
        return true;
    }
    float *values = relief->selectionLayer().data();
    for (const EqualRun &run : runs)
        values = std::fill_n(values, run.count, run.value);
    return true;
}

ImportSource *Replay::_source() const
{
    auto *source = dynamic_cast<ImportSource *>(relief->source());
    const bool fits =
        source && source->width() == relief->width() && source->height() == relief->height();
    return fits ? source : nullptr;
}

/// Dragging a slider records many settings in a row: only the last ones that give
/// the same layers are computed.
bool Replay::_takeImport(JournalReader &reader)
{
    ImportSource *source = _source();
    const std::optional<ImportMeta> meta = unpacked<ImportMeta>(reader.meta());
    if (!source || !meta)
        return false;
    const ImportSettings settings = unpackedSettings(reader.meta().mid(sizeof(ImportMeta)));
    std::vector<float> basRelief(reader.head().dataBytes / sizeof(float));
    if (!reader.read(basRelief.data(), basRelief.size() * sizeof(float)) || !reader.isWhole() ||
        (!basRelief.empty() && static_cast<qsizetype>(basRelief.size()) != relief->cells()) ||
        (meta->shows != 0 && basRelief.empty() && source->lastBasRelief.empty()))
        return false;
    // Without the preview the reference layer does not change.
    if (settings.preview != source->settings().preview)
        finish();
    source->setSettings(settings);
    source->dirty = meta->dirty != 0;
    if (!basRelief.empty())
        source->lastBasRelief = std::move(basRelief);
    if (meta->recomputed != 0) {
        m_recompute = true;
        source->showsBasRelief = meta->shows != 0;
    }
    return true;
}

void Replay::finish()
{
    if (!std::exchange(m_recompute, false))
        return;
    ImportSource &source = *_source();
    if (source.showsBasRelief)
        std::ranges::copy(source.lastBasRelief, relief->heights().data());
    else
        source.computeHeights(relief->heights().data());
    if (source.settings().preview)
        relief->referenceLayer().copyFrom(relief->heights());
}

bool Replay::_takeOther(JournalReader &reader)
{
    if (!reader.isWhole())
        return false;
    switch (reader.head().type) {
    case RecordType::Undo:
        if (!m_keepHistory || !history.canUndo())
            return false;
        history.undo();
        return true;
    case RecordType::Redo:
        if (!m_keepHistory || !history.canRedo())
            return false;
        history.redo();
        return true;
    case RecordType::Accept:
        relief->setSource(nullptr);
        return true;
    default:
        return false;
    }
}

} // namespace marlowen

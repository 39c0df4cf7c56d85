#include "recovery/journaljob.h"

namespace marlowen {

std::optional<JournalEvent> journalEvent(const SculptUndoEvent &event)
{
    JournalEvent found;
    found.name = event.name;
    found.serial = event.serial;
    found.groupEnd = event.groupEnd;
    if (const auto *patches = dynamic_cast<const SculptPatchEvent *>(&event)) {
        const bool mask = dynamic_cast<const SculptMaskEvent *>(&event) != nullptr;
        if (!mask && !dynamic_cast<const SculptModifyEvent *>(&event))
            return {};
        found.type = mask ? RecordType::Mask : RecordType::Heights;
        found.before = patches->before();
        found.after = patches->after();
    } else if (const auto *resize = dynamic_cast<const SculptResizeEvent *>(&event)) {
        found.type = RecordType::Resize;
        found.newSize = {resize->newWidth(), resize->newHeight()};
    } else if (const auto *scale = dynamic_cast<const SculptZScaleEvent *>(&event)) {
        found.type = RecordType::ZScale;
        found.zBefore = scale->before();
        found.zAfter = scale->after();
    } else {
        return {};
    }
    return found;
}

int64_t JournalJob::bytes() const
{
    int64_t bytes = base ? base->bytes() : 0;
    for (const JournalEvent &event : events)
        bytes += event.after ? 2 * event.after->count() * qsizetype{sizeof(float)} : 0;
    return bytes + static_cast<int64_t>(runs.size() * sizeof(EqualRun)) +
           static_cast<int64_t>(basRelief.size() * sizeof(float));
}

} // namespace marlowen

#include "fuzzinput.h"
#include "recovery/replay.h"

#include <cstring>

#include <zlib.h>

using namespace marlowen;

namespace {

/// Gives every record the sum of its bytes, so that changed bytes are read and not refused.
void correctSums(QByteArray &bytes)
{
    qsizetype at = sizeof(JournalHead);
    RecordHead head;
    while (bytes.size() - at >= static_cast<qsizetype>(sizeof head)) {
        std::memcpy(&head, bytes.constData() + at, sizeof head);
        const auto room = static_cast<uint64_t>(bytes.size() - at);
        if (head.dataBytes > room || head.bytes() > room)
            return;
        const auto length = static_cast<qsizetype>(head.bytes() - sizeof(uint32_t));
        const auto sum = static_cast<uint32_t>(
            crc32_z(0, reinterpret_cast<const Bytef *>(bytes.constData() + at), length));
        std::memcpy(bytes.data() + at + length, &sum, sizeof sum);
        at += static_cast<qsizetype>(head.bytes());
    }
}

void replay(const QByteArray &bytes)
{
    JournalReader reader;
    if (reader.open(fuzz::fileOf(bytes, ".journal")) != JournalReader::State::Readable)
        return;
    Replay replay(true);
    try {
        while (reader.next() && replay.take(reader)) {
        }
        replay.finish();
        // What comes back can be undone.
        while (replay.relief && replay.history.canUndo())
            replay.history.undo();
    } catch (const std::bad_alloc &) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes = fuzz::bytesOf(data, size);
    replay(bytes);
    correctSums(bytes);
    replay(bytes);
    return 0;
}

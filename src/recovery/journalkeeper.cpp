#include "recovery/journalkeeper.h"

#include "recovery/compaction.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <new>

namespace marlowen {

namespace {

/// A journal of a small relief is not worth the trouble before it has so many bytes.
constexpr int64_t leastCompacted = 1 << 20;

QByteArrayView floatsOf(const Patch &patch)
{
    return {reinterpret_cast<const char *>(patch.values.constData()),
            patch.count() * qsizetype{sizeof(float)}};
}

} // namespace

JournalKeeper::JournalKeeper(QString path, double compactGrids)
    : m_path(std::move(path))
    , m_compactGrids(compactGrids)
{
}

JournalKeeper::~JournalKeeper()
{
    if (m_compaction)
        QFile::remove(m_path + QStringLiteral(".new"));
}

bool JournalKeeper::resume(int64_t end, const SculptUndo &history)
{
    JournalReader reader;
    if (reader.open(m_path) != JournalReader::State::Readable || !reader.next())
        return false;
    const std::optional<BaseHead> base = readBaseHead(reader);
    if (!base || !m_file.continueAt(m_path, end))
        return false;
    m_baseEnd = reader.end();
    m_gridBytes = int64_t{base->state.width} * base->state.height * int64_t{sizeof(float)};
    m_compactAbove = 0;
    m_model.clear();
    while (reader.end() < end && reader.next())
        m_model.add({reader.head(), reader.begin(), reader.end()});
    m_model.takeSerials(history);
    return true;
}

JournalKeeper::Written JournalKeeper::write(const JournalJob &job)
{
    switch (job.kind) {
    case JournalJob::Base:
        return _writeBase(job);
    case JournalJob::Push:
    case JournalJob::Undo:
    case JournalJob::Redo:
        return _writeStep(job);
    default:
        break;
    }
    const std::array<std::pair<JournalJob::Kind, RecordType>, 3> types{
        {{JournalJob::Selection, RecordType::Selection},
         {JournalJob::Import, RecordType::Import},
         {JournalJob::Accept, RecordType::Accept}}};
    const auto type = std::ranges::find(types, job.kind, &decltype(types)::value_type::first);
    const std::array<QByteArrayView, 2> data{
        QByteArrayView(reinterpret_cast<const char *>(job.runs.data()),
                       static_cast<qsizetype>(job.runs.size() * sizeof(EqualRun))),
        QByteArrayView(reinterpret_cast<const char *>(job.basRelief.data()),
                       static_cast<qsizetype>(job.basRelief.size() * sizeof(float)))};
    const bool written = _append({.type = type->second, .flags = EndsStep}, job.meta, data);
    return written ? Written::Yes : Written::No;
}

JournalKeeper::Written JournalKeeper::_writeBase(const JournalJob &job)
{
    m_compaction.reset();
    const QString beside = m_path + QStringLiteral(".new");
    JournalFile file;
    if (job.fresh) {
        m_file.close();
        QFile::remove(beside);
    }
    const bool written = file.create(job.fresh ? m_path : beside) && appendBase(file, *job.base);
    if (!written || (!job.fresh && (!file.sync() || !file.renameTo(m_path)))) {
        m_error = file.error();
        // An incomplete base is useless and takes space on the disk.
        QFile::remove(job.fresh ? m_path : beside);
        return Written::No;
    }
    m_file = std::move(file);
    m_model.clear();
    m_baseEnd = m_file.size();
    m_gridBytes = int64_t{job.base->width} * job.base->height * int64_t{sizeof(float)};
    m_compactAbove = 0;
    return Written::Yes;
}

JournalKeeper::Written JournalKeeper::_writeStep(const JournalJob &job)
{
    if (job.kind != JournalJob::Push)
        return _writeStates(job);
    const int64_t before = m_file.size();
    for (const JournalEvent &event : job.events) {
        const bool last = &event == &job.events.back();
        if (!_appendEvent(event, last ? EndsStep : 0)) {
            // The records of the step that were written stay without their end.
            return m_file.size() == before ? Written::No : Written::BaseNeeded;
        }
    }
    return Written::Yes;
}

/// A step back or forward: one empty record when the journal holds the step, else the values that
/// it leads to.
JournalKeeper::Written JournalKeeper::_writeStates(const JournalJob &job)
{
    const bool back = job.kind == JournalJob::Undo;
    if (back ? m_model.undoes(job.events) : m_model.redoes(job.events)) {
        const RecordType type = back ? RecordType::Undo : RecordType::Redo;
        return _append({.type = type, .flags = EndsStep}, {}, {}) ? Written::Yes : Written::No;
    }
    std::vector<JournalEvent> events = job.events;
    if (back)
        std::ranges::reverse(events);
    const bool resizes = std::ranges::any_of(
        events, [](const JournalEvent &event) { return event.type == RecordType::Resize; });
    if (resizes || events.empty())
        return Written::BaseNeeded;
    const int64_t before = m_file.size();
    for (JournalEvent &event : events) {
        if (back) {
            event.after = event.before;
            event.zAfter = event.zBefore;
        }
        const bool last = &event == &events.back();
        if (!_appendEvent(event, Unrecorded | (last ? EndsStep : 0)))
            return m_file.size() == before ? Written::No : Written::BaseNeeded;
    }
    return Written::Yes;
}

bool JournalKeeper::_appendEvent(const JournalEvent &event, uint8_t flags)
{
    const RecordHead head{.type = event.type, .flags = flags};
    if (event.type == RecordType::Resize)
        return _append(head, packed(event.newSize, event.name), {}, event.serial);
    if (event.type == RecordType::ZScale)
        return _append(head, packed(event.zAfter, event.name), {}, event.serial);
    const Patch &patch = *event.after;
    const PatchMeta meta{patch.left, patch.top, patch.right - patch.left, patch.bottom - patch.top};
    const QByteArrayView values = floatsOf(patch);
    return _append(head, packed(meta, event.name), {&values, 1}, event.serial);
}

bool JournalKeeper::_append(const RecordHead &head, const QByteArray &meta, JournalFile::Parts data,
                            uint64_t serial)
{
    const int64_t begin = m_file.size();
    if (!m_file.append(head, meta, data))
        return false;
    m_model.add({head, begin, m_file.size()}, serial);
    return true;
}

bool JournalKeeper::sync()
{
    return m_file.sync();
}

bool JournalKeeper::wantsCompaction() const
{
    const auto limit = static_cast<int64_t>(m_compactGrids * static_cast<double>(m_gridBytes));
    return m_file.isOpen() &&
           (m_compaction || stepBytes() > std::max({limit, leastCompacted, m_compactAbove}));
}

void JournalKeeper::compactSlice()
{
    try {
        if (!m_compaction)
            return _startCompaction();
        const Compaction::State state = m_compaction->slice(m_model, m_file);
        if (state == Compaction::State::Working)
            return;
        if (state == Compaction::State::Ready && m_model.isCut(m_compaction->cut()) && _swapIn())
            return m_compaction.reset();
    } catch (const std::bad_alloc &) {
        // The journal is not shortened.
    }
    m_compaction.reset();
    QFile::remove(m_path + QStringLiteral(".new"));
    m_compactAbove = 2 * stepBytes();
}

void JournalKeeper::_startCompaction()
{
    const std::optional<size_t> cut = m_model.cut(m_gridBytes);
    m_compactAbove = cut ? 0 : 2 * stepBytes();
    if (cut)
        m_compaction = std::make_unique<Compaction>(m_path, m_path + QStringLiteral(".new"), *cut);
}

bool JournalKeeper::_swapIn()
{
    JournalFile &target = m_compaction->target();
    if (!target.appendFrom(m_file, m_compaction->copied(), m_file.size()) ||
        !target.renameTo(m_path))
        return false;
    m_model.dropBefore(m_compaction->cut(), target.size() - m_file.size());
    m_baseEnd = m_compaction->baseEnd();
    m_file = std::move(target);
    return true;
}

} // namespace marlowen

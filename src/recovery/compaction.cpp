#include "recovery/compaction.h"

#include <algorithm>

namespace marlowen {

namespace {

constexpr int64_t copiedAtOnce = 8 << 20;

} // namespace

Compaction::Compaction(const QString &journal, const QString &target, size_t cut)
    : m_targetPath(target)
    , m_cut(cut)
    , m_readable(m_reader.open(journal) == JournalReader::State::Readable && m_reader.next() &&
                 m_replay.take(m_reader))
{
}

Compaction::State Compaction::slice(const JournalModel &model, const JournalFile &journal)
{
    if (!m_readable)
        return State::Failed;
    if (m_at < m_cut)
        return _replayOne(model);
    if (!m_hasBase) {
        m_copied = m_cut < model.records().size() ? model.records()[m_cut].begin : journal.size();
        return _writeBase();
    }
    return _copy(journal);
}

/// Undone steps do not count, so that repeated undo and redo make no difference.
Compaction::State Compaction::_replayOne(const JournalModel &model)
{
    const JournalModel::Record &record = model.records()[m_at++];
    if (!m_reader.next() || m_reader.begin() != record.begin)
        return State::Failed;
    const RecordType type = record.head.type;
    m_steps += record.head.has(EndsStep) && type != RecordType::Selection ? 1 : 0;
    if (!record.inForce || type == RecordType::Undo || type == RecordType::Redo)
        return State::Working;
    return m_replay.take(m_reader) ? State::Working : State::Failed;
}

Compaction::State Compaction::_writeBase()
{
    m_hasBase = true;
    m_replay.finish();
    BaseState base = baseOf(*m_replay.relief);
    base.modified = true;
    base.file = m_replay.base().file;
    base.steps = m_replay.base().steps + m_steps;
    m_replay.relief.reset();
    if (!m_target.create(m_targetPath) || !appendBase(m_target, base))
        return State::Failed;
    m_baseEnd = m_target.size();
    return State::Working;
}

Compaction::State Compaction::_copy(const JournalFile &journal)
{
    const int64_t end = std::min(journal.size(), m_copied + copiedAtOnce);
    if (!m_target.appendFrom(journal, m_copied, end))
        return State::Failed;
    m_copied = end;
    if (end < journal.size())
        return State::Working;
    return m_target.sync() ? State::Ready : State::Failed;
}

} // namespace marlowen

#include "recovery/foundwork.h"

#include "files/heightpicture.h"
#include "recovery/journalmodel.h"
#include "recovery/replay.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>

#include <algorithm>
#include <new>

namespace marlowen {

namespace {

const QString pattern = QStringLiteral("window-*");

Failure restoreFailed(const QString &sentence)
{
    return {QObject::tr("Restore Failed"), sentence};
}

enum class Left { Nothing, Work, Unreadable };

/// Reads the heads of the records, not their data.
Left lookInto(JournalReader &reader, FoundWork &work)
{
    if (reader.size() <= int64_t{sizeof(JournalHead)})
        return Left::Nothing;
    if (!reader.next())
        return Left::Unreadable;
    const std::optional<BaseHead> base = readBaseHead(reader);
    if (!base)
        return Left::Unreadable;
    work.file = base->state.file;
    work.steps = base->state.steps;
    bool any = base->state.modified;
    while (reader.next()) {
        const RecordType type = reader.head().type;
        work.steps += reader.head().has(EndsStep) && type != RecordType::Selection ? 1 : 0;
        any = any || type != RecordType::Selection;
    }
    return any ? Left::Work : Left::Nothing;
}

bool replayAll(JournalReader &reader, Replay &replay, Progress &progress)
{
    while (reader.next() && replay.take(reader)) {
        progress.advance(static_cast<double>(reader.end()) / static_cast<double>(reader.size()));
        if (progress.cancelled())
            return false;
    }
    replay.finish();
    return true;
}

} // namespace

WorkSearch searchWork(const QString &root)
{
    WorkSearch search;
    const QDir folder(root);
    for (const QString &name : folder.entryList({pattern}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        std::optional<RecoveryFolder> taken = RecoveryFolder::take(folder.filePath(name));
        if (!taken)
            continue;
        FoundWork work;
        work.folder = taken->path();
        work.time = QFileInfo(taken->journal()).lastModified();
        JournalReader reader;
        const JournalReader::State state = reader.open(taken->journal());
        search.ofOtherVersion += state == JournalReader::State::OtherVersion ? 1 : 0;
        if (state == JournalReader::State::Foreign || state == JournalReader::State::OtherVersion)
            continue;
        const Left left =
            state == JournalReader::State::Readable ? lookInto(reader, work) : Left::Nothing;
        search.unreadable += left == Left::Unreadable ? 1 : 0;
        if (left == Left::Work)
            search.found.append(work);
        else
            taken->discard();
    }
    std::ranges::sort(search.found, std::greater(), &FoundWork::time);
    return search;
}

Result<RecoveredWork> restoreWork(const QString &folder, Progress &progress)
{
    std::optional<RecoveryFolder> taken = RecoveryFolder::take(folder);
    if (!taken)
        return restoreFailed(QObject::tr("Another window works on it."));
    const Failure unreadable = restoreFailed(QObject::tr("The kept work cannot be read."));
    try {
        JournalReader reader;
        if (reader.open(taken->journal()) != JournalReader::State::Readable)
            return unreadable;
        Replay replay(true);
        if (!replayAll(reader, replay, progress))
            return restoreFailed({});
        if (!replay.relief)
            return unreadable;
        return RecoveredWork{std::move(*taken),         std::move(replay.relief),
                             std::move(replay.history), replay.base().file,
                             replay.goodEnd(),          replay.goodEnd() < reader.size()};
    } catch (const std::bad_alloc &) {
        return restoreFailed(QObject::tr("There is not enough memory for this relief."));
    }
}

QImage foundThumbnail(const QString &folder, int side)
{
    try {
        // Twice through: without a history, steps that were taken back must be known before.
        const QString path = folder + QStringLiteral("/journal");
        JournalReader heads;
        JournalReader reader;
        if (heads.open(path) != JournalReader::State::Readable || !heads.next() ||
            reader.open(path) != JournalReader::State::Readable)
            return {};
        JournalModel model;
        while (heads.next())
            model.add({heads.head(), heads.begin(), heads.end()});
        Replay replay(false);
        if (!reader.next() || !replay.take(reader))
            return {};
        for (const JournalModel::Record &record : model.records()) {
            const bool counts = record.inForce && record.head.type != RecordType::Undo &&
                                record.head.type != RecordType::Redo;
            if (!reader.next() || (counts && !replay.take(reader)))
                break;
        }
        replay.finish();
        return heightThumbnail(heightView(*replay.relief), replay.relief->zScale, side);
    } catch (const std::bad_alloc &) {
        return {};
    }
}

bool discardWork(const QString &folder)
{
    std::optional<RecoveryFolder> taken = RecoveryFolder::take(folder);
    if (!taken)
        return false;
    const QString journal = taken->journal();
    taken->discard();
    return !QFileInfo::exists(journal);
}

} // namespace marlowen

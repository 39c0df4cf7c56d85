#include "files/fio/fio.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageLogger>

namespace marlowen {

namespace {

template <typename... Values>
void warn(const char *function, const char *format, Values... values)
{
    QMessageLogger("fio", 0, function).warning(format, values...);
}

quint64 keyOf(const void *object)
{
    return static_cast<quint64>(reinterpret_cast<quintptr>(object));
}

} // namespace

bool Fio::writeMagic(quint16 magic, quint16 version)
{
    return write(magic) && write(version);
}

quint16 Fio::readVerifyMagic(quint16 magic, quint16 highestVersion)
{
    quint16 foundMagic = 0;
    quint16 version = 0;
    if (!read(foundMagic) || !read(version))
        return 0;
    if (foundMagic != magic) {
        warn("readVerifyMagic", "FIO readVerify: bad magic %04x / %04x\n", unsigned{foundMagic},
             unsigned{magic});
        failCorrupted();
        return 0;
    }
    if (version > highestVersion) {
        warn("readVerifyMagic", "FIO readVerify: bad version %d / %d\n", int{version},
             int{highestVersion});
        fail(newerVersionMessage());
        return 0;
    }
    return version;
}

Fio::Reference *Fio::_find(quint64 key, quint16 typeId)
{
    const auto found = m_references.find({key, typeId});
    return found == m_references.end() ? nullptr : &found->second;
}

Fio::Reference &Fio::_enter(quint64 key, quint16 typeId, void *object)
{
    const Reference fresh{typeId, object, static_cast<quint32>(m_references.size()), false};
    return m_references.emplace(Key{key, typeId}, fresh).first->second;
}

std::optional<quint32> Fio::getRef(quint16 typeId, const void *object)
{
    if (!object) {
        fail(QStringLiteral("interal error: getRef null ref"));
        return {};
    }
    const quint64 key = keyOf(object);
    if (const Reference *known = _find(key, typeId))
        return known->index;
    return _enter(key, typeId, const_cast<void *>(object)).index;
}

bool Fio::writeRef(quint16 typeId, const void *object, bool &bodyWritten)
{
    const std::optional<quint32> index = getRef(typeId, object);
    if (!index || !write(*index))
        return false;
    Reference *reference = _find(keyOf(object), typeId);
    bodyWritten = std::exchange(reference->written, true);
    return true;
}

bool Fio::readTag(quint16 typeId, void **out)
{
    quint32 index = 0;
    if (!read(index))
        return false;
    const auto count = static_cast<quint32>(m_references.size());
    if (index == count) {
        *out = nullptr;
        return true;
    }
    if (index > count) {
        warn("readTag", "FIO readTag: bad id %d / %d\n", static_cast<int>(index),
             static_cast<int>(count));
        return failCorrupted();
    }
    // The key of this index belongs to the object itself or to one of another type.
    const Reference *found = _find(index, typeId);
    if (!found) {
        const auto other = m_references.lower_bound({index, quint16{0}});
        if (other == m_references.end() || other->first.first != index)
            return fail(QStringLiteral("internal error: missing reference"));
        warn("readTag", "FIO readTag: bad magic %04x / %04x\n", unsigned{other->second.typeId},
             unsigned{typeId});
        return failCorrupted();
    }
    if (found->index != index) {
        warn("readTag", "FIO readTag: bad id %04d / %04d\n", static_cast<int>(found->index),
             static_cast<int>(index));
        return failCorrupted();
    }
    *out = found->object;
    return true;
}

std::optional<quint32> Fio::addTag(quint16 typeId, void *object)
{
    const quint64 key = m_references.size();
    if (_find(key, typeId)) {
        fail(QStringLiteral("internal error: tag multiply set"));
        return {};
    }
    return _enter(key, typeId, object).index;
}

bool Fio::setTag(quint32 index, quint16 typeId, void *object)
{
    Reference *reference = _find(index, typeId);
    if (!reference)
        return fail(QStringLiteral("internal error: setTag invalid id"));
    if (!object)
        return fail(QStringLiteral("internal error: setTag null ref"));
    reference->object = object;
    return true;
}

bool Fio::hasTag(quint16 typeId, quint64 key) const
{
    const auto found = m_references.find({key, typeId});
    return found != m_references.end() && found->second.object != nullptr;
}

bool Fio::folderIsWritable(const QString &path)
{
    QFile probe(QFileInfo(path).absolutePath() + QStringLiteral("/QEV_TEMP_FILE"));
    if (!probe.open(QIODevice::WriteOnly))
        return false;
    probe.close();
    return probe.remove();
}

} // namespace marlowen

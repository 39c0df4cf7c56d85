#include "recovery/journalrecord.h"

#include <QDataStream>
#include <QIODevice>
#include <QMap>

namespace marlowen {

namespace {

constexpr qsizetype longestName = 24;
static_assert(sizeof(RecordHead) + sizeof(PatchMeta) + longestName + sizeof(uint32_t) <= 64);

} // namespace

QByteArray packed(const void *value, qsizetype bytes, const QString &name)
{
    return QByteArray(static_cast<const char *>(value), bytes) + name.toUtf8().left(longestName);
}

QByteArray packedSettings(const ImportSettings &settings)
{
    QMap<QByteArray, double> values;
    for (const Field<ImportSettings> &field : importFields())
        values.insert(field.info.key, field.value(settings));
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << values;
    return bytes;
}

ImportSettings unpackedSettings(const QByteArray &bytes)
{
    QMap<QByteArray, double> values;
    QDataStream stream(bytes);
    stream >> values;
    ImportSettings settings;
    for (const Field<ImportSettings> &field : importFields()) {
        if (const auto found = values.constFind(field.info.key); found != values.cend())
            field.store(settings, *found);
    }
    return clampedFields(importFields(), settings);
}

} // namespace marlowen

#include "files/fio/fioheader.h"

#include "files/fio/fio.h"

#include <algorithm>
#include <cstring>

namespace marlowen {

namespace {

constexpr char family[] = {'Q', 'E', 'V'};
/// Of the types 1, 2, ... in order.
constexpr char typeLetters[] = {'B', 'J', 'P', 'S', 'W'};
constexpr int typeCount = sizeof typeLetters;
constexpr quint8 endOfAttributes = 0;

auto keyIs(quint8 key)
{
    return [key](const auto &attribute) { return attribute.first == key; };
}

} // namespace

QString FioHeader::attribute(quint8 key) const
{
    const auto found = std::find_if(attributes.begin(), attributes.end(), keyIs(key));
    return found == attributes.end() ? QString() : found->second;
}

void FioHeader::setAttribute(quint8 key, const QString &value)
{
    if (value.isEmpty() || key == endOfAttributes) {
        attributes.removeIf(keyIs(key));
        return;
    }
    const auto found = std::find_if(attributes.begin(), attributes.end(), keyIs(key));
    if (found == attributes.end())
        attributes.append({key, value});
    else
        found->second = value;
}

bool FioHeader::write(Fio &fio) const
{
    if (type < 1 || type > typeCount)
        return fio.fail(QStringLiteral("internal error: unknown FioHeader type"));
    if (!fio.writeData(family, sizeof family) || !fio.writeData(typeLetters + type - 1, 1) ||
        !fio.write(version))
        return false;
    for (const auto &[key, value] : attributes) {
        if (!fio.write(key) || !fio.write(value))
            return false;
    }
    return fio.write(endOfAttributes);
}

bool FioHeader::read(Fio &fio)
{
    char magic[sizeof family + 1];
    quint16 foundVersion = 0;
    if (!fio.readData(magic, sizeof magic) || !fio.read(foundVersion))
        return false;
    const char *letter = std::find(typeLetters, typeLetters + typeCount, magic[sizeof family]);
    if (std::memcmp(magic, family, sizeof family) != 0 || letter == typeLetters + typeCount)
        return fio.failCorrupted();
    type = static_cast<int>(letter - typeLetters) + 1;
    version = foundVersion;
    attributes.clear();
    quint8 key = 0;
    while (fio.read(key)) {
        if (key == endOfAttributes)
            return true;
        QString value;
        if (!fio.read(value))
            return false;
        setAttribute(key, value);
    }
    return false;
}

} // namespace marlowen

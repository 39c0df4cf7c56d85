#pragma once

#include <QList>
#include <QString>

#include <utility>

namespace marlowen {

class Fio;

/// The header of a container file: the bytes "QEV" and a letter for the type, a 16-bit version,
/// attributes of a key byte and a string each, and a 0 byte that ends them.
struct FioHeader
{
    /// 1 "B", 2 "J", 3 "P" (patterns), 4 "S", 5 "W".
    static constexpr int patternType = 3;

    int type = 0;
    quint16 version = 0;
    /// Keys 1..255, each at most once, in the order in which they were first set.
    QList<std::pair<quint8, QString>> attributes;

    /// Empty when the key is not there.
    QString attribute(quint8 key) const;
    /// Replaces the value of a key; an empty value removes the key. Key 0 is invalid.
    void setAttribute(quint8 key, const QString &value);

    bool write(Fio &fio) const;
    /// Fails on any other four bytes than those of a type. Versions are the caller's to judge.
    bool read(Fio &fio);
};

} // namespace marlowen

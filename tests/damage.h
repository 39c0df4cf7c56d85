#pragma once

#include <QByteArray>

#include <algorithm>

/// Damaged copies of a small valid file, for the tests of readers.
namespace damage {

/// Calls check(copy, length) with every copy that is cut short.
template <typename Check>
void eachCut(const QByteArray &whole, Check check)
{
    for (qsizetype length = 0; length < whole.size(); ++length)
        check(whole.left(length), length);
}

/// Calls check(copy, bit) with copies in which one bit is flipped: every bit of the first 48 bytes,
/// where headers lie, and about `more` of the others, evenly spread.
template <typename Check>
void eachFlip(const QByteArray &whole, Check check, qsizetype more = 400)
{
    const qsizetype bits = whole.size() * 8;
    const qsizetype header = std::min<qsizetype>(bits, 48 * 8);
    const qsizetype step = std::max<qsizetype>(1, (bits - header) / more);
    for (qsizetype bit = 0; bit < bits; bit += bit < header ? 1 : step) {
        QByteArray copy = whole;
        copy[bit / 8] = static_cast<char>(copy[bit / 8] ^ (1 << bit % 8));
        check(copy, bit);
    }
}

} // namespace damage

#include "files/fio/fio.h"

#include <QBuffer>
#include <QtEndian>

#include <limits>

namespace marlowen {

namespace {

/// Longer counts of bytes are kept for later versions of the format.
constexpr int longestString = 65530;
constexpr quint16 nullString = 65535;
constexpr int doubleDigits = 10;

template <std::unsigned_integral Integer>
bool put(Fio &fio, Integer value)
{
    const Integer stored = qToBigEndian(value);
    return fio.writeData(&stored, sizeof stored);
}

template <std::unsigned_integral Integer>
bool get(Fio &fio, Integer &value)
{
    Integer stored = 0;
    if (!fio.readData(&stored, sizeof stored))
        return false;
    value = qFromBigEndian(stored);
    return true;
}

bool put(Fio &fio, qint16 value)
{
    return fio.write(static_cast<quint16>(value));
}

bool get(Fio &fio, qint16 &value)
{
    quint16 stored = 0;
    if (!fio.read(stored))
        return false;
    value = static_cast<qint16>(stored);
    return true;
}

bool put(Fio &fio, bool value)
{
    return fio.write(quint8{value});
}

bool get(Fio &fio, bool &value)
{
    quint8 byte = 0;
    if (!fio.read(byte))
        return false;
    value = byte != 0;
    return true;
}

bool put(Fio &fio, const QString &value)
{
    if (value.isNull())
        return fio.write(nullString);
    const QByteArray text = value.toUtf8();
    if (text.size() > longestString)
        return fio.fail(QStringLiteral("String too long"));
    const auto count = static_cast<quint16>(text.size());
    return fio.write(count) && fio.writeData(text.constData(), count);
}

bool get(Fio &fio, QString &value)
{
    quint16 count = 0;
    if (!fio.read(count))
        return false;
    if (count == nullString) {
        value = QString();
        return true;
    }
    if (count > longestString)
        return fio.fail(Fio::newerVersionMessage());
    QByteArray text;
    if (!fio.readBlock(text, count))
        return false;
    value = count == 0 ? QStringLiteral("") : QString::fromUtf8(text);
    return true;
}

bool put(Fio &fio, double value)
{
    return fio.write(QString().setNum(value, 'g', doubleDigits));
}

bool get(Fio &fio, double &value)
{
    QString text;
    if (!fio.read(text))
        return false;
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (!ok)
        return fio.failCorrupted(QStringLiteral(" (float conversion)"));
    value = number;
    return true;
}

bool put(Fio &fio, float value)
{
    return fio.write(static_cast<double>(value));
}

bool get(Fio &fio, float &value)
{
    double number = 0.0;
    if (!fio.read(number))
        return false;
    value = static_cast<float>(number);
    return true;
}

bool put(Fio &fio, const std::array<double, 4> &value)
{
    for (const double number : value) {
        if (!fio.write(number))
            return false;
    }
    return true;
}

bool get(Fio &fio, std::array<double, 4> &value)
{
    std::array<double, 4> numbers{};
    for (double &number : numbers) {
        if (!fio.read(number))
            return false;
    }
    value = numbers;
    return true;
}

bool put(Fio &fio, const QRectF &value)
{
    return fio.write(std::array{double{value.x()}, double{value.y()}, double{value.width()},
                                double{value.height()}});
}

bool get(Fio &fio, QRectF &value)
{
    std::array<double, 4> numbers{};
    if (!fio.read(numbers))
        return false;
    value = QRectF(numbers[0], numbers[1], numbers[2], numbers[3]);
    return true;
}

bool put(Fio &fio, const QFont &value)
{
    return fio.write(value.toString());
}

bool get(Fio &fio, QFont &value)
{
    QString text;
    if (!fio.read(text))
        return false;
    QFont font;
    if (!font.fromString(text))
        return fio.fail(QStringLiteral("Unknown font: ") + text);
    value = font;
    return true;
}

bool put(Fio &fio, const QImage &value)
{
    QBuffer encoded;
    encoded.open(QIODevice::WriteOnly);
    const bool ok = value.save(&encoded, "PNG");
    if (!ok || encoded.size() > std::numeric_limits<int>::max())
        return fio.fail(QStringLiteral("Image encoding failure"));
    const auto count = static_cast<quint32>(encoded.size());
    return fio.write(count) && fio.writeData(encoded.data().constData(), static_cast<int>(count));
}

bool get(Fio &fio, QImage &value)
{
    quint32 count = 0;
    QByteArray encoded;
    if (!fio.read(count) || !fio.readBlock(encoded, count))
        return false;
    QImage image;
    if (!image.loadFromData(encoded, "PNG"))
        return fio.fail(QStringLiteral("Image decode failure"));
    value = image;
    return true;
}

} // namespace

template <FioValue T>
bool Fio::write(const T &value)
{
    return put(*this, value);
}

template <FioValue T>
bool Fio::read(T &value)
{
    return get(*this, value);
}

template bool Fio::write(const quint8 &);
template bool Fio::read(quint8 &);
template bool Fio::write(const quint16 &);
template bool Fio::read(quint16 &);
template bool Fio::write(const qint16 &);
template bool Fio::read(qint16 &);
template bool Fio::write(const quint32 &);
template bool Fio::read(quint32 &);
template bool Fio::write(const bool &);
template bool Fio::read(bool &);
template bool Fio::write(const QString &);
template bool Fio::read(QString &);
template bool Fio::write(const double &);
template bool Fio::read(double &);
template bool Fio::write(const float &);
template bool Fio::read(float &);
template bool Fio::write(const QRectF &);
template bool Fio::read(QRectF &);
template bool Fio::write(const std::array<double, 4> &);
template bool Fio::read(std::array<double, 4> &);
template bool Fio::write(const QFont &);
template bool Fio::read(QFont &);
template bool Fio::write(const QImage &);
template bool Fio::read(QImage &);

} // namespace marlowen

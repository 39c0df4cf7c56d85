#pragma once

#include <QString>

class QIODevice;

namespace marlowen {

/// Why a BMP is not sound (its rows cut short, compressed or not) or not read rightly (bit fields
/// that are not runs of 4 to 8 bits); empty when it can be read. Its decoder fills what is missing
/// with black and reports no failure. Reads from the start of the device and returns to it.
QString bmpDamage(QIODevice &device);

} // namespace marlowen

#pragma once

#include <QString>

class QIODevice;

namespace marlowen {

/// Why a BMP is damaged (its rows truncated, compressed or not) or unsupported (bit fields
/// that are not runs of 4 to 8 bits); empty when it can be read. The decoder fills missing parts
/// with black and reports no failure. Reads from the start of the device and returns to it.
QString bmpDamage(QIODevice &device);

} // namespace marlowen

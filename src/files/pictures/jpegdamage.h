#pragma once

#include <QString>

class QIODevice;

namespace marlowen {

/// Why a JPEG is damaged (truncated, even with an end mark after the cut, or with broken data);
/// empty when it is not. The decoder fills missing parts with grey and reports no failure. Decodes
/// the file at an eighth of its size. Reads from the start of the device and returns to it.
QString jpegDamage(QIODevice &device);

} // namespace marlowen

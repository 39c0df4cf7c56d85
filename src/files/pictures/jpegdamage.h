#pragma once

#include <QString>

class QIODevice;

namespace marlowen {

/// Why a JPEG is not sound (cut short, also with an end mark behind the cut, or its data broken);
/// empty when it is. Its decoder fills what is missing with grey and reports no failure. Decodes
/// the file at an eighth of its size. Reads from the start of the device and returns to it.
QString jpegDamage(QIODevice &device);

} // namespace marlowen

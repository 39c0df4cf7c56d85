#pragma once

class QIODevice;

namespace marlowen {

/// Whether a JPEG or BMP lacks its end. Their decoders fill the missing rows with grey or black and
/// report no failure. Other contents (PNG decoders report a missing end themselves) give false.
/// Reads from the start of the device and returns to it.
bool imageCutShort(QIODevice &device);

} // namespace marlowen

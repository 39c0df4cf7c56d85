#pragma once

#include <QString>

class QIODevice;

namespace marlowen {

/// What the chunks of a PNG say.
struct PngReport
{
    QString damage;         ///< why it is not sound; empty when it is
    int orientation = 1;    ///< 1..8, of its EXIF data, which Qt does not look at
    bool clearGrey = false; ///< one of its grey levels is transparent; Qt forgets which
};

/// Walks the chunks: every checksum, the end, and whether the data can hold as many pixels as the
/// header promises. Reads from the start of the device and returns to it.
PngReport inspectPng(QIODevice &device);

} // namespace marlowen

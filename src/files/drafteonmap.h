#pragma once

#include "base/result.h"

#include <QString>

class QDataStream;

namespace marlowen {

class Relief;

/// The height map that Drafteon imports: four big-endian 32-bit integers (format 2,
/// width, height, range truncated), then width x height little-endian floats, row 0 first, the
/// lowest height at 0 and the highest at 1048576; values that would land below 0.1 are 0. Returns
/// whether the stream is Ok after the last value.
bool writeDrafteonMap(QDataStream &stream, const Relief &relief);

/// Fails with "Open Failed" / "Error! File Open Failed" or "Save Failed" / "Error! File I/O Error".
Outcome exportDrafteonMap(const Relief &relief, const QString &path);

} // namespace marlowen

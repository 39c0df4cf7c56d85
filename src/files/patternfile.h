#pragma once

#include "base/progress.h"
#include "base/result.h"
#include "relief/grid/floatgrid.h"
#include "relief/grid/relief.h"

#include <QImage>
#include <QString>

#include <memory>

namespace marlowen {

/// The pattern file (".ptr"): heights with a title and a thumbnail, kept to be used again. A tagged
/// container of type "P"; docs/formats.md gives its bytes.

/// What a pattern is called and where it comes from; any may be empty, none longer than 65530 bytes
/// of UTF-8.
struct PatternAttributes
{
    QString title;
    QString author;
    QString units;   ///< the unit its maker worked in, a label of lengthUnits
    QString created; ///< ISO 8601, in UTC
};

/// Everything but the heights.
struct PatternInfo
{
    PatternAttributes attributes;
    int width = 0; ///< cells
    int height = 0;
    double zScale = 1.0;
    QImage thumbnail; ///< lit, row 0 at the bottom, at most patternThumbnailSide in each direction
};

struct Pattern
{
    PatternInfo info;
    FloatGrid heights; ///< finite, none negative; 0.0 is empty
};

/// Of a pattern file's name, in lower case.
inline constexpr char patternEnding[] = ".ptr";
inline constexpr int patternThumbnailSide = 256;

/// The attributes of a pattern made now: the file's name without its ending as title.
PatternAttributes newPatternAttributes(const QString &path, const QString &units);

/// The values written in addition to the heights.
struct PatternToSave
{
    PatternAttributes attributes;
    double zScale = 1.0;
    GridView heights;
};

/// Writes a temporary file and renames it. Fails with saveFailed(), also when cancelled; an
/// existing file then stays unchanged.
Outcome savePattern(const PatternToSave &pattern, const QString &path, Progress &progress);

/// Fails with openFailed(), or with "Invalid File" and one sentence when the file is not a pattern,
/// is damaged or truncated (a digest covers all of it), or is of a later version. Invalid heights
/// (negative, NaN, infinite) become 0; the session log gives their number. Memory is taken as the
/// heights arrive. Fails with loadFailed() when cancelled.
Result<Pattern> loadPattern(const QString &path, Progress &progress);

/// A pattern as a relief of its heights and Z scale; fails as loadPattern().
Result<std::unique_ptr<Relief>> openPattern(const QString &path);

/// Reads what precedes the heights, without the digest.
Result<PatternInfo> readPatternInfo(const QString &path);

} // namespace marlowen

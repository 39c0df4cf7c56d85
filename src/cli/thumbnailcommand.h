#pragma once

#include "base/result.h"

#include <QStringList>

namespace marlowen {

/// What `marlowen-cli thumbnail FILE PICTURE [--size N]` asks for.
struct ThumbnailJob
{
    QString file;
    QString picture;
    int size = 256; ///< 16 .. 1024 pixels, the most that the picture is wide and high
};

/// Fails with a sentence about the error in the command line.
Result<ThumbnailJob> parseThumbnail(const QStringList &arguments);

/// Writes the picture as PNG. The failure names the file.
Outcome runThumbnail(const ThumbnailJob &job);

} // namespace marlowen

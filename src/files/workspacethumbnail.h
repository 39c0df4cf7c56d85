#pragma once

#include <QImage>
#include <QString>

namespace marlowen {

/// A small lit picture of a workspace file's heights, at most `side` pixels wide and high, row 0 at
/// the bottom as the views show it; empty cells are transparent. Reads only the rows it needs. A
/// null image when the file cannot be read or is not a whole workspace.
QImage workspaceThumbnail(const QString &path, int side);

} // namespace marlowen

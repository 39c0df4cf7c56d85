#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace marlowen {

/// Pure functions over what a server sends; nothing of it is trusted.

/// Larger replies are refused, before and after inflation.
inline constexpr qint64 jsonLimitBytes = qint64{64} << 20;
inline constexpr qint64 fileLimitBytes = qint64{1} << 30;

/// Inflates a gzip stream of one or more members; nothing when it is damaged, cut short or would
/// take more than `limit` bytes.
std::optional<QByteArray> inflateGzip(const QByteArray &packed, qint64 limit);

/// Whether a content type is JSON, with or without parameters ("application/json; charset=utf-8").
bool isJsonType(const QString &contentType);

/// The file name of a "Content-Disposition" header: the extended form (filename*=UTF-8''...) before
/// the plain one. Any path before it, control characters and leading points are cut off; empty when
/// nothing is left.
QString fileNameOf(const QString &contentDisposition);

} // namespace marlowen

#pragma once

#include <QByteArray>

namespace marlowen {

/// GL_VERSION of the context that a widget of the default surface format gets on this machine;
/// null (isNull()) when there is no such context.
QByteArray readGlVersion();

/// The number that the version text begins with: digits with at most one point in any
/// locale; 0 when it begins with something else.
double leadingVersionNumber(const QByteArray &version);

/// Logs the version and says whether it is enough (2.1 or later). A machine without one gets a
/// critical line, one that is too old also the box "Missing OpenGL 2.1".
bool acceptGlVersion(const QByteArray &version);

} // namespace marlowen

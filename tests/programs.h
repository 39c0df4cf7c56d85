#pragma once

#include <QCoreApplication>

/// The root of the source tree.
extern const char *const sourceFolder;

/// The path of one of the programs ("marlowen", "marlowen-cli"), which are in the folder of the
/// tests.
inline QString programPath(const char *name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

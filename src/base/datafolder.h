#pragma once

#include <QString>

namespace marlowen {

/// The folder "Marlowen3" under the user's home folder; created when missing on every call.
QString dataFolder();

/// The folder "download" inside the data folder; created when missing on every call.
QString downloadFolder();

} // namespace marlowen

#pragma once

#include <QString>

namespace marlowen {

class CommandSet;

/// The chapter of the manual that lists every key, as Markdown: those of the commands, and those
/// that the views and panels hear themselves.
QString keyChapter(const CommandSet &commands);

} // namespace marlowen

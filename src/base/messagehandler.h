#pragma once

namespace marlowen {

/// Sends the toolkit's messages to "qdebug.txt" in the data folder, truncated by the first message
/// of the process. Debug messages are written as "DEBUG:" and the text; the others with their
/// prefix, source file and function. A fatal message is written like the others.
void installMessageHandler();

} // namespace marlowen

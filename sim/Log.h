#pragma once

#include <string>

namespace sim {

/// Writes one line on standard error, after the program's name. May be called by many threads.
void Log(const std::string& line);

/// The text made fit for a line: cut to what is worth reading, and every byte that is not a
/// printable ASCII character replaced, since clients may send anything. "(nothing)" for an empty
/// one.
std::string Printable(const std::string& text);

} // namespace sim

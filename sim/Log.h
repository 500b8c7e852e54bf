#pragma once

#include <string>

namespace sim {

/// Writes one line to standard error, after the program's name. Many threads may call it at once.
void Log(const std::string& line);

/// The text as a part of one line. Clients may send anything, so a long text is cut off and every
/// byte that is not a printable ASCII character is replaced. An empty text is "(nothing)".
std::string Printable(const std::string& text);

} // namespace sim

#pragma once

#include <ostream>

/// Whether the user asked for colors. False at start; the handler of "colors" sets it, nothing
/// sets it back.
extern bool useColors;

/// Whether a style applied to stream writes its bytes: the standard stream is on a terminal and
/// the user asked for colors. False for any stream that is not a standard output stream.
bool IsStylingActive(const std::ostream& stream);

using Manipulator = std::ostream& (*)(std::ostream&);

// Manipulators that write one ANSI sequence, or nothing where styling is not active. Apply one
// before setting a field width, or the width pads the sequence and not the text.

std::ostream& Bold(std::ostream& stream);
std::ostream& Reset(std::ostream& stream);
std::ostream& Red(std::ostream& stream);
std::ostream& Green(std::ostream& stream);
std::ostream& Yellow(std::ostream& stream);
std::ostream& Blue(std::ostream& stream);

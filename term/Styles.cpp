// The six styles and the rule for when they are written.

#include "term/Styles.h"

#include <cstdio>
#include <iostream>

#include <unistd.h>

bool useColors = false;

namespace {

std::FILE* StandardHandle(const std::ostream& stream)
{
    if (&stream == &std::cout) {
        return stdout;
    }
    if (&stream == &std::cerr || &stream == &std::clog) {
        return stderr;
    }
    return nullptr;
}

std::ostream& Style(std::ostream& stream, const char* sequence)
{
    return IsStylingActive(stream) ? stream << sequence : stream;
}

} // namespace

bool IsStylingActive(const std::ostream& stream)
{
    // Never cached: the descriptor may be attached to something else by the next style. The
    // terminal is meant to be asked first, also in a run without colors; keep the order of the last
    // two.
    std::FILE* const handle = StandardHandle(stream);
    return handle != nullptr && isatty(fileno(handle)) != 0 && useColors;
}

std::ostream& Bold(std::ostream& stream)
{
    return Style(stream, "\033[1m");
}

// Two zeros, unlike the others: the bytes are fixed, terminals read both forms alike.
std::ostream& Reset(std::ostream& stream)
{
    return Style(stream, "\033[00m");
}

std::ostream& Red(std::ostream& stream)
{
    return Style(stream, "\033[31m");
}

std::ostream& Green(std::ostream& stream)
{
    return Style(stream, "\033[32m");
}

std::ostream& Yellow(std::ostream& stream)
{
    return Style(stream, "\033[33m");
}

std::ostream& Blue(std::ostream& stream)
{
    return Style(stream, "\033[34m");
}

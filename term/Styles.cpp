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
    // Never cached: the descriptor may point elsewhere by the next style. The terminal is checked
    // before the flag on purpose; keep the order.
    std::FILE* const handle = StandardHandle(stream);
    return handle != nullptr && isatty(fileno(handle)) != 0 && useColors;
}

std::ostream& Bold(std::ostream& stream)
{
    return Style(stream, "\033[1m");
}

// Two zeros on purpose: terminals treat both forms alike, but the output must not change.
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

#pragma once

#include <iomanip>
#include <ostream>
#include <string_view>

/// One column of a report: the text, then spaces up to width bytes. A longer text is written whole.
struct Field
{
    std::string_view text;
    int width;
};

inline std::ostream& operator<<(std::ostream& stream, const Field& field)
{
    return stream << std::left << std::setw(field.width) << field.text;
}

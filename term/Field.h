#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

/// One column of a report: the text, then spaces up to width bytes. A longer text is written whole.
struct Field
{
    std::string_view text;
    std::size_t width;
};

inline std::ostream& operator<<(std::ostream& stream, const Field& field)
{
    // std::setw would write the spaces one by one.
    const std::size_t size = field.text.size();
    return stream << field.text << std::string(size < field.width ? field.width - size : 0, ' ');
}

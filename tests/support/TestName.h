#pragma once

#include <cctype>
#include <string>
#include <string_view>

/// A text as a part of a test's name, which can hold letters, digits and underscores only.
inline std::string TestName(std::string_view text)
{
    std::string name;
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            name += c;
        } else {
            name += c == ' ' || c == '-' ? "_" : c == '=' ? "Equals" : c == ':' ? "Colon" : "Other";
        }
    }
    return name;
}

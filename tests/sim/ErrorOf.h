#pragma once

#include "sim/StartError.h"

#include <string>

/// The exit status and the line of the StartError that the function throws.
template <typename Function>
std::string ErrorOf(Function function)
{
    try {
        function();
    } catch (const sim::StartError& error) {
        return std::to_string(error.status) + " " + error.what();
    }
    return "no error";
}

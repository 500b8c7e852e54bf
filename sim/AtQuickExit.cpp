// Part of instrumented builds alone: AT_QUICK_EXIT is the function that writes their findings.

#include <cstdlib>

extern "C" void AT_QUICK_EXIT();

namespace {

[[maybe_unused]] const int registered = std::at_quick_exit(AT_QUICK_EXIT);

} // namespace

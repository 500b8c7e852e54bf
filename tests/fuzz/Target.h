#pragma once

#include <cstddef>
#include <cstdint>

/// One input, through the tool and its oracles; ends the process on a finding. Each target defines
/// it; libFuzzer, or tests/fuzz/Replay.cpp where that is not built in, calls it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

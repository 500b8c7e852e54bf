#pragma once

#include <string>

/// Gives this process, and those it starts, the engine's fixed address for themselves.
///
/// That is a network namespace with only loopback where the kernel grants one (in a user namespace
/// too where this process is not root). Where it does not, or where the environment variable
/// QUORLAN_TESTS_SHARE_LOOPBACK is set, test processes take turns on the real loopback; the turn
/// lasts until the process ends.
///
/// Call before any thread is started. Throws std::system_error when not even a turn can be had.
void ClaimEngineAddress();

/// Empty if the engine's address can be listened on, otherwise a sentence that says why not.
std::string WhyEngineAddressIsTaken();

/// Makes a connect that nobody answers give up after seconds instead of minutes. Has no effect on
/// the real loopback, whose settings are not a test's to change.
void ShortenConnectTimeout();

#pragma once

/// Gives this process, and those it starts, the engine's fixed address for themselves.
///
/// They get a network namespace with only loopback, within a user namespace where this process is
/// not root. Where the kernel refuses that, or the environment variable
/// QUORLAN_TESTS_SHARE_LOOPBACK is set, they take turns with other test processes on the real
/// loopback. A turn lasts until all of them have ended.
///
/// Call before any thread is started. Throws std::system_error when not even a turn can be had.
void ClaimEngineAddress();

/// Makes a connect that nobody answers give up after seconds instead of minutes. Has no effect on
/// the real loopback, whose settings are not a test's to change.
void ShortenConnectTimeout();

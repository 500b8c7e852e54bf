#pragma once

namespace sim {

/// Gives this process, and those it starts, a network namespace of their own in which there is
/// nothing but loopback. Where this process is not root, that is within a user namespace of their
/// own, in which user and group keep their numbers.
///
/// Call it before any thread is started. Throws std::system_error where the kernel refuses.
void EnterPrivateNetwork();

} // namespace sim

#pragma once

// What the two fault injectors share. Everything here may run before the program's libraries are
// set up, so it keeps to functions that need no state, and within an allocation, so it allocates
// nothing.

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace fault {

inline long callCount = 0;

inline long Number(const char* name, long fallback)
{
    const char* text = getenv(name);
    if (text == nullptr) {
        return fallback;
    }
    long number = 0;
    for (; *text != '\0'; ++text) {
        number = number * 10 + (*text - '0');
    }
    return number;
}

inline bool IsChosen(const char* call)
{
    const char* const chosen = getenv("FAULT_CALL");
    return chosen != nullptr && std::strcmp(chosen, call) == 0;
}

// Asks the kernel itself: the C library's calls may be the ones that fail.
inline void LeaveMark()
{
    const char* const mark = getenv("FAULT_MARK");
    if (mark != nullptr) {
        syscall(SYS_close,
                syscall(SYS_openat, AT_FDCWD, mark, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    }
}

/// Counts the call if it is the chosen one; true, with errno set, if it is to fail.
inline bool Fails(const char* call)
{
    if (!IsChosen(call)) {
        return false;
    }
    const long first = Number("FAULT_NTH", 0);
    const long number = ++callCount;
    if (first == 0 || number < first || number >= first + Number("FAULT_TIMES", 1)) {
        return false;
    }
    LeaveMark();
    errno = static_cast<int>(Number("FAULT_ERRNO", EIO));
    return true;
}

} // namespace fault

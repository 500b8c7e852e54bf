#pragma once

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include <unistd.h>

/// Throws std::system_error with errno's meaning when a system call of the test itself failed.
inline void Require(bool succeeded, const std::string& what)
{
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/// Owns a file descriptor and closes it.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor(descriptor)
    {
        Require(descriptor >= 0, "descriptor");
    }
    Descriptor(Descriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(descriptor, other.descriptor);
        return *this;
    }
    ~Descriptor() { Close(); }

    int Get() const { return descriptor; }

    void Close()
    {
        if (descriptor >= 0) {
            close(std::exchange(descriptor, -1));
        }
    }

private:
    int descriptor = -1;
};

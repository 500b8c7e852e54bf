// A library to preload into a program: chosen allocations find no memory. Not for programs with
// AddressSanitizer, which has an allocator of its own.
//
// Environment, read at each allocation:
//   FAULT_CALL   malloc, which stands for every allocation
//   FAULT_NTH    the first one that fails, from 1; none if it is not given
//   FAULT_TIMES  how many fail in a row; 1 if it is not given
//   FAULT_ERRNO  ENOMEM's number
//   FAULT_MARK   a file that is made when one fails

#include "tests/fault-injection/FaultInjector.h"

#include <cstddef>

using fault::Fails;

extern "C" {

// The C library's own, under the names it keeps them by: looking them up could itself allocate.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

void* malloc(std::size_t size) noexcept
{
    return Fails("malloc") ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    return Fails("malloc") ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept
{
    return Fails("malloc") ? nullptr : __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return Fails("malloc") ? nullptr : __libc_memalign(alignment, size);
}

} // extern "C"

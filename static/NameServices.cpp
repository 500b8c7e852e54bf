// The name services of a static quorlan: there are none.
//
// POCO refers to them for what the tool never uses: user names, for the paths of configuration
// files that are not read, and host names, where the engine's address is a number. The C library
// would answer through modules that it loads from the system at run time, which a single file in
// an empty root has not got and which must match the library that it was linked with. "No such
// entry" is an answer that POCO knows how to go on from.

#include <netdb.h>
#include <pwd.h>

extern "C" {

passwd* getpwuid(uid_t /*user*/)
{
    return nullptr;
}

hostent* gethostbyname(const char* /*name*/)
{
    return nullptr;
}

servent* getservbyname(const char* /*name*/, const char* /*protocol*/)
{
    return nullptr;
}

int getaddrinfo(const char* /*node*/, const char* /*service*/, const addrinfo* /*hints*/,
                addrinfo** /*result*/)
{
    return EAI_FAIL;
}

void freeaddrinfo(addrinfo* /*result*/) {}

int getnameinfo(const sockaddr* /*address*/, socklen_t /*size*/, char* /*node*/,
                socklen_t /*nodeSize*/, char* /*service*/, socklen_t /*serviceSize*/, int /*flags*/)
{
    return EAI_FAIL;
}

} // extern "C"

// A static quorlan has no name services: no user and no host is known.
//
// POCO uses them for user names (in paths of configuration files, which the tool does not read) and
// for host names (the engine's address is a number). The C library would load modules of the system
// for them at run time. They may be missing, or not match the C library that was linked. POCO
// handles "no such entry".

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

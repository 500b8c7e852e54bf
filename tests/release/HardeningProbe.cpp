// Code that needs every protection, for those that leave a mark only where they are needed and that
// the tool itself gives no occasion for. It is compiled like the tool and looked at, never run.

#include <cstring>

void Consume(char* text);

void CopyOntoTheStack(const char* text, std::size_t size)
{
    char copy[100000];
    std::memcpy(copy, text, size);
    Consume(copy);
}

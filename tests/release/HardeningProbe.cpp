// Some protections leave a trace only in code that needs them, and the tool has none. This code
// does. It is compiled like the tool and never run.

#include <cstring>

void Consume(char* text);

void CopyOntoTheStack(const char* text, std::size_t size)
{
    char copy[100000];
    std::memcpy(copy, text, size);
    Consume(copy);
}

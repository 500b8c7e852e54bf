#include <cstdio>

void Print(const char* line)
{
    std::puts(line);
}

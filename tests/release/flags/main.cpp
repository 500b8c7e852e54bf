#include <cstdio>

int main()
{
#ifdef _FORTIFY_SOURCE
    std::printf("fortified: %d\n", _FORTIFY_SOURCE);
#endif
#ifdef __SSP_STRONG__
    std::puts("stack protector");
#endif
#ifdef _GLIBCXX_ASSERTIONS
    std::puts("assertions");
#endif
}

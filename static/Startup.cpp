// A static quorlan leaves out work that the libraries do at the start of every run for parts of
// them that it never uses.

#include <cstdio>
#include <cwchar>

// NOLINTBEGIN(*-reserved-identifier, readability-*): the C library's names
extern "C" {

// Where the program's file is. The C library asks the kernel, to find modules next to the file. A
// static program without name services loads none. The value means "unknown".
const char* _dl_get_origin()
{
    return reinterpret_cast<const char*>(-1); // NOLINT(*-int-to-ptr)
}

// POCO calls it before main(). The C library reads the time zone by itself when a local time is
// asked for, which the tool never does.
void tzset() {}

// The C++ library converts every character there and back before main(), for wide streams. In the
// "C" locale, which the tool never leaves, only ASCII can be converted.
wint_t btowc(int character)
{
    return character >= 0 && character < 128 ? static_cast<wint_t>(character) : WEOF;
}

int wctob(wint_t character)
{
    return character < 128 ? static_cast<int>(character) : EOF;
}

} // extern "C"
// NOLINTEND(*-reserved-identifier, readability-*)

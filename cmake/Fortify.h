// Included before each source. The compiler alone knows whether it optimizes, without which
// _FORTIFY_SOURCE is a warning, and whether it defines the macro itself.
#if defined __OPTIMIZE__ && !defined _FORTIFY_SOURCE
#define _FORTIFY_SOURCE 2
#endif

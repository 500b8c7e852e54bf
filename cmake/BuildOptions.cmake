# Compiler and linker options for this project's own code, as two INTERFACE targets:
#
#   quorlan-build-options    warnings and hardening; every target links it
#   quorlan-instrumentation  sanitizers, coverage and fuzzing; comes with the libraries of the tool and
#                            of the simulator. Programs that only drive the built tool do without it,
#                            and start in half the time.

add_library(quorlan-build-options INTERFACE)
add_library(quorlan-instrumentation INTERFACE)

# A constructor's parameter may have the name of the member that it initializes, which Clang's
# -Wshadow allows. GCC's -Wshadow=local ignores all members; Clang reports what it misses.
target_compile_options(
  quorlan-build-options
  INTERFACE $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow>
            -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wsign-conversion
            -Wold-style-cast
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wcast-align
            -Wcast-qual
            -Wformat=2
            -Wimplicit-fallthrough
            -Wundef
            $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op
            -Wduplicated-cond
            -Wduplicated-branches
            -Wuseless-cast>
            $<$<BOOL:${QUORLAN_WERROR}>:-Werror>)

if(QUORLAN_SANITIZE)
  # A sanitizer report ends the process, so that no test can pass with one.
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
  target_compile_options(quorlan-instrumentation INTERFACE ${sanitizers} -fno-omit-frame-pointer)
  target_link_options(quorlan-instrumentation INTERFACE ${sanitizers})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # As Clang does by default: with fewer libraries to load, the tool starts sooner.
    target_link_options(quorlan-instrumentation INTERFACE -static-libasan -static-libubsan)
  endif()
endif()

if(QUORLAN_FUZZ)
  target_compile_options(quorlan-instrumentation INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(QUORLAN_COVERAGE)
  target_compile_options(quorlan-instrumentation INTERFACE --coverage)
  target_link_options(quorlan-instrumentation INTERFACE --coverage)
endif()

# Hardening. _FORTIFY_SOURCE needs an optimized build, and AddressSanitizer does its checks better.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
target_compile_options(quorlan-build-options INTERFACE -fstack-protector-strong
                                                       -fstack-clash-protection)
target_compile_definitions(
  quorlan-build-options
  INTERFACE _GLIBCXX_ASSERTIONS
            $<$<AND:$<NOT:$<CONFIG:Debug>>,$<NOT:$<BOOL:${QUORLAN_SANITIZE}>>>:_FORTIFY_SOURCE=2>)
target_link_options(quorlan-build-options INTERFACE -Wl,-z,relro,-z,now -Wl,-z,noexecstack)

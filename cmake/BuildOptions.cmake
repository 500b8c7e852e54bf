# Compiler and linker options for this project's own code. Those that nobody needs to overrule are in
# two INTERFACE targets:
#
#   quorlan-build-options    warnings and _FORTIFY_SOURCE; every target links it
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

# Hardening, for all code. It comes before the flags of whoever builds, so that theirs win.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
if(NOT DEFINED CMAKE_POSITION_INDEPENDENT_CODE)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()
string(PREPEND CMAKE_CXX_FLAGS
       "-D_GLIBCXX_ASSERTIONS -fstack-protector-strong -fstack-clash-protection ")
string(PREPEND CMAKE_EXE_LINKER_FLAGS "-Wl,-z,relro,-z,now -Wl,-z,noexecstack ")
# AddressSanitizer does the same checks better.
if(NOT QUORLAN_SANITIZE AND NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
  target_compile_options(quorlan-build-options
                         INTERFACE "SHELL:-include '${CMAKE_CURRENT_LIST_DIR}/Fortify.h'")
endif()

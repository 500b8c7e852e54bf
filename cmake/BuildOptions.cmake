# Compiler and linker options for this project's own code, as two INTERFACE targets. Third-party
# code is never compiled with them.
#
#   quorlan-build-options    warnings and hardening; every target of ours links it
#   quorlan-instrumentation  sanitizers, coverage and fuzzing; comes with the libraries of the tool and
#                            of the simulator. Programs that only drive the built tool go without, as
#                            a test process starts in half the time then.

option(QUORLAN_WERROR "Treat warnings as errors" OFF)
option(QUORLAN_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

add_library(quorlan-build-options INTERFACE)
add_library(quorlan-instrumentation INTERFACE)

# A constructor's parameter may have the name of the member that it initializes. Clang's -Wshadow
# allows that; GCC allows it only where no member counts. Clang still refuses it elsewhere.
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
  # A sanitizer report ends the process, so that no test can pass over one.
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
  target_compile_options(quorlan-instrumentation INTERFACE ${sanitizers} -fno-omit-frame-pointer)
  target_link_options(quorlan-instrumentation INTERFACE ${sanitizers})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # As Clang does by itself: without another library to load, the tool starts sooner.
    target_link_options(quorlan-instrumentation INTERFACE -static-libasan -static-libubsan)
  endif()
endif()

option(QUORLAN_FUZZ "Build the fuzz targets with Clang's libFuzzer" OFF)
if(QUORLAN_FUZZ)
  target_compile_options(quorlan-instrumentation INTERFACE -fsanitize=fuzzer-no-link)
endif()

option(QUORLAN_COVERAGE "Count how often each line and branch runs" OFF)
if(QUORLAN_COVERAGE)
  target_compile_options(quorlan-instrumentation INTERFACE --coverage)
  target_link_options(quorlan-instrumentation INTERFACE --coverage)
endif()

# Hardening. _FORTIFY_SOURCE needs an optimised build, and AddressSanitizer does the same checks
# better; the other options cost nothing where they are not needed.
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

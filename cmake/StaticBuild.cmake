# Links everything into one static file. Included after BuildOptions, whose target it adds to.
# docs/static-build.md says what each option here brings.

include(CheckIPOSupported)
check_ipo_supported()
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
target_compile_options(quorlan-build-options INTERFACE -ffunction-sections -fdata-sections
                                                       "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
# Otherwise GCC shows POCO's headers in messages by their path in the home folder, where it is shorter.
target_compile_options(quorlan-build-options INTERFACE -fno-canonical-system-headers)
target_link_options(quorlan-build-options INTERFACE -Wl,--gc-sections -s)

# Debian's C library for armhf has no start-up code for position-independent static programs.
include(CheckLinkerFlag)
check_linker_flag(CXX -static-pie QUORLAN_HAS_STATIC_PIE)
if(QUORLAN_HAS_STATIC_PIE)
  set(CMAKE_CXX_LINK_OPTIONS_PIE -static-pie) # -pie would undo it
  check_linker_flag(CXX -Wl,-z,pack-relative-relocs QUORLAN_HAS_RELR)
  if(QUORLAN_HAS_RELR)
    target_link_options(quorlan-build-options INTERFACE -Wl,-z,pack-relative-relocs)
  endif()
else()
  set(CMAKE_POSITION_INDEPENDENT_CODE OFF)
  target_link_options(quorlan-build-options INTERFACE -static)
endif()

# Stops a build that would use the distribution's shared libraries.
function(require_static_poco)
  get_target_property(type Poco::Foundation TYPE)
  if(NOT type STREQUAL "STATIC_LIBRARY")
    message(FATAL_ERROR "No static POCO: run scripts/poco-static first (see docs/device.md)")
  endif()
endfunction()

# Links everything into one static file. Included after BuildOptions, whose target it adds to.
# docs/static-build.md says what each option here brings.

include(CheckIPOSupported)
check_ipo_supported()
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
target_compile_options(quorlan-build-options INTERFACE -ffunction-sections -fdata-sections
                                                       "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
# The sections again: link-time optimization compiles while it links.
target_link_options(quorlan-build-options INTERFACE -ffunction-sections -fdata-sections
                                                    -Wl,--gc-sections -s)

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

# Puts the functions that a run needs, and their constants, at the start of the file, where the list
# of scripts/function-order has them. That script reads the map.
function(order_functions target list)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
  file(STRINGS "${list}" names)
  set(code "")
  set(constants "")
  foreach(name IN LISTS names)
    if(name MATCHES "[.]o$")
      string(APPEND code "*${name}(.text)\n")
      string(APPEND constants "*${name}(.rodata .rodata.*)\n")
    else()
      string(APPEND code "*(.text.${name} .text.startup.${name} .text.exit.${name} "
                         ".text.unlikely.${name})\n")
      string(APPEND constants "*(.rodata.${name} .rodata.${name}.*)\n")
    endif()
  endforeach()
  set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.ld")
  file(CONFIGURE OUTPUT "${script}" CONTENT "SECTIONS
{
.rodata.first : {
${constants}}
.text.first : {
${code}}
}
INSERT BEFORE .text;
" @ONLY)
  target_link_options(${target} PRIVATE "-Wl,-T,${script}" "-Wl,-Map,${CMAKE_CURRENT_BINARY_DIR}/${target}.map")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()

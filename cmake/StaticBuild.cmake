# Links everything into one static file. Included after BuildOptions, whose target it adds to.
# docs/static-build.md says what each option here brings.

include(CheckIPOSupported)
check_ipo_supported()
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
target_compile_options(quorlan-build-options INTERFACE -ffunction-sections -fdata-sections)
# The sections again: link-time optimization compiles while it links.
target_link_options(quorlan-build-options INTERFACE -ffunction-sections -fdata-sections
                                                    -Wl,--gc-sections)

# No file name depends on where the tree is, nor on ccache, which can make them relative to the build
# folder. In debug information they are absolute: the linker would insert the path to a relative one.
# Without the first option, GCC names POCO's headers by their path in the home folder where that is
# shorter.
set(source_name /usr/src/quorlan)
file(RELATIVE_PATH up "${PROJECT_BINARY_DIR}" "${PROJECT_SOURCE_DIR}")
target_compile_options(
  quorlan-build-options
  INTERFACE -fno-canonical-system-headers
            "-fmacro-prefix-map=${up}="
            "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/="
            -fdebug-prefix-map=app/=${source_name}/build/app/
            -fdebug-prefix-map=sim/=${source_name}/build/sim/
            "-fdebug-prefix-map=${up}=${source_name}/"
            "-fdebug-prefix-map=${PROJECT_SOURCE_DIR}=${source_name}")

# Debian's C library for armhf has no start-up code for position-independent static programs.
include(CheckLinkerFlag)
check_linker_flag(CXX -static-pie QUORLAN_HAS_STATIC_PIE)
if(QUORLAN_HAS_STATIC_PIE)
  set(CMAKE_CXX_LINK_OPTIONS_PIE -static-pie) # -pie would undo it
  set(static_link_option -static-pie)
  check_linker_flag(CXX -Wl,-z,pack-relative-relocs QUORLAN_HAS_RELR)
  if(QUORLAN_HAS_RELR)
    target_link_options(quorlan-build-options INTERFACE -Wl,-z,pack-relative-relocs)
  endif()
else()
  set(CMAKE_POSITION_INDEPENDENT_CODE OFF)
  target_link_options(quorlan-build-options INTERFACE -static)
  set(static_link_option -no-pie)
endif()

# Writes a linker script that puts the functions of the list first among the code, and their constants
# first among the constants. scripts/function-order makes the list: what a run needs is next to each
# other.
function(write_function_order script list)
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
  # Where constants are mapped with the code anyway, they are next to it.
  set(place_of_constants .rodata)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    set(place_of_constants .text)
  endif()
  file(CONFIGURE OUTPUT "${script}" CONTENT "SECTIONS
{
.rodata.first : {
${constants}}
}
INSERT BEFORE ${place_of_constants};
SECTIONS
{
.text.first : {
${code}}
}
INSERT BEFORE .text;
" @ONLY)
endfunction()

# finish_static_program(<target> [<list of functions>]): adds NAME-relink, the folder from which the
# program is linked the second time, now that all code is optimized, and with the functions of the list
# first. The program is stripped. Its symbols are in NAME.debug, which debuggers find by the build ID.
# -g is for the lines; the code is compiled without.
function(finish_static_program target)
  set(map "${PROJECT_BINARY_DIR}/${target}.map")
  set(script "${PROJECT_SOURCE_DIR}/packaging/relink-kit")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}" "${script}.md")
  target_link_options(
    ${target} PRIVATE -g "-fdebug-prefix-map=${PROJECT_BINARY_DIR}=${source_name}/build"
    -save-temps=obj "-Wl,-Map=${map}.lto")
  separate_arguments(linker_flags UNIX_COMMAND "${CMAKE_EXE_LINKER_FLAGS}")
  set(kit "${PROJECT_BINARY_DIR}/${target}-relink")
  set(order_option "")
  set(copy_order "")
  if(ARGC GREATER 1)
    set(order "${PROJECT_BINARY_DIR}/${target}.ld")
    write_function_order("${order}" "${ARGV1}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${order}")
    set(order_option -Wl,-T,functions.ld)
    set(copy_order COMMAND "${CMAKE_COMMAND}" -E copy "${order}" "${kit}/functions.ld")
  endif()
  add_custom_command(
    TARGET ${target}
    POST_BUILD
    COMMAND
      "${script}" $<TARGET_FILE:${target}> "${map}.lto" "${kit}"
      "${CMAKE_CXX_COMPILER}" ${static_link_option} ${linker_flags} ${order_option}
      $<TARGET_PROPERTY:quorlan-build-options,INTERFACE_LINK_OPTIONS>
    ${copy_order}
    COMMAND "${kit}/relink" $<TARGET_FILE:${target}> "-Wl,-Map=${map}"
    COMMAND_EXPAND_LISTS VERBATIM)
endfunction()

# Stops a build that would use the distribution's shared libraries.
function(require_static_poco)
  get_target_property(type Poco::Foundation TYPE)
  if(NOT type STREQUAL "STATIC_LIBRARY")
    message(FATAL_ERROR "No static POCO: run scripts/poco-static first (see docs/device.md)")
  endif()
endfunction()

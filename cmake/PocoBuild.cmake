# Part of scripts/poco-static: what it changes in POCO's build.

# For speed also where the others are compiled for size. docs/static-build.md says what it brings.
cmake_language(DEFER CALL target_compile_options JSON PRIVATE -O2)

# The same objects wherever they are built. GCC names the sections of link-time optimization at random
# unless it has a seed, and writes the path of the source into them as it is on the command line.
foreach(language IN ITEMS C CXX)
  string(APPEND CMAKE_${language}_COMPILE_OBJECT " -frandom-seed=<OBJECT>")
  string(REPLACE "<SOURCE>" "\"`realpath -s --relative-to='${CMAKE_BINARY_DIR}' <SOURCE>`\""
                 CMAKE_${language}_COMPILE_OBJECT "${CMAKE_${language}_COMPILE_OBJECT}")
endforeach()

# Part of scripts/poco-static: which of POCO's libraries are compiled for speed also where the others
# are compiled for size. docs/static-build.md says what it brings.
cmake_language(DEFER CALL target_compile_options JSON PRIVATE -O2)

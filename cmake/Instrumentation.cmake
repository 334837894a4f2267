# Instrumented builds: sanitizers and coverage, for all targets.

set(MISCTOOLS_SANITIZE "" CACHE STRING
  "Sanitizers to build with, as for -fsanitize=: 'address,undefined' or 'thread'")
option(MISCTOOLS_FUZZ "Run the fuzz targets with libFuzzer; needs clang" OFF)
option(MISCTOOLS_COVERAGE "Record which lines and branches the tests reach" OFF)

option(MISCTOOLS_LIBRARY_ASSERTIONS "Enable the assertions of the C++ library" OFF)

if(MISCTOOLS_LIBRARY_ASSERTIONS)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

if(MISCTOOLS_SANITIZE)
  # A finding ends the program, so that no test ignores it.
  set(misctools_sanitize_flags -fsanitize=${MISCTOOLS_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_compile_options(${misctools_sanitize_flags})
  add_link_options(${misctools_sanitize_flags})
endif()

if(MISCTOOLS_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "MISCTOOLS_FUZZ needs clang; the compiler is ${CMAKE_CXX_COMPILER_ID}.")
  endif()
  # libFuzzer uses coverage to find inputs that reach new code.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(MISCTOOLS_COVERAGE)
  # Atomic counters, because tests use threads.
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

# Such a build is for tests only: its files need the tool's runtime and export symbols of it.
set(MISCTOOLS_INSTRUMENTED OFF)
# For generator expressions: 1 in release builds.
set(misctools_is_release "$<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>")
if(MISCTOOLS_SANITIZE OR MISCTOOLS_COVERAGE OR MISCTOOLS_FUZZ)
  set(MISCTOOLS_INSTRUMENTED ON)
  set(misctools_is_release 0)
endif()

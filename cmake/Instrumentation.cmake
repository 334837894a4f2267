# Builds that watch the program while it runs: sanitizers and coverage, for everything in the tree.

set(MISCTOOLS_SANITIZE "" CACHE STRING
  "Sanitizers to build with, as -fsanitize= takes them: 'address,undefined' or 'thread'")
option(MISCTOOLS_FUZZ "Let libFuzzer drive the fuzz targets; needs clang" OFF)
option(MISCTOOLS_COVERAGE "Record which lines and branches the tests reach" OFF)

option(MISCTOOLS_LIBRARY_ASSERTIONS "Let the C++ library check what it is asked to do" OFF)

if(MISCTOOLS_LIBRARY_ASSERTIONS)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

if(MISCTOOLS_SANITIZE)
  # A finding ends the program, so that no test passes over it.
  set(misctools_sanitize_flags -fsanitize=${MISCTOOLS_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_compile_options(${misctools_sanitize_flags})
  add_link_options(${misctools_sanitize_flags})
endif()

if(MISCTOOLS_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "MISCTOOLS_FUZZ needs clang; the compiler is ${CMAKE_CXX_COMPILER_ID}.")
  endif()
  # libFuzzer looks where the code goes, to find inputs that lead elsewhere.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(MISCTOOLS_COVERAGE)
  # Atomic counters, as tests run threads.
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

# Such a build is for its own tests only: its files need the tool's runtime, and export symbols of it.
set(MISCTOOLS_INSTRUMENTED OFF)
# For generator expressions: 1 where what is built is to be shipped.
set(misctools_is_shipped "$<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>")
if(MISCTOOLS_SANITIZE OR MISCTOOLS_COVERAGE OR MISCTOOLS_FUZZ)
  set(MISCTOOLS_INSTRUMENTED ON)
  set(misctools_is_shipped 0)
endif()

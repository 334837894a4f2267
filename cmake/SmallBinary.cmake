# The library as it is shipped: small, for machines with little memory. Its time is spent in Qt, so
# nothing is lost; the few sources with loops of their own are compiled for speed.
include(CheckIPOSupported)
check_ipo_supported(RESULT misctools_has_ipo OUTPUT misctools_ipo_trouble LANGUAGES CXX)

# How large the shipped library may become without its debug information, in KiB. On 64-bit ARM its
# data begin at a page of 64 KiB, which some kernels have, so that a part of the file is empty.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(misctools_size_limit 110)
elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
  set(misctools_size_limit 200)
else()
  set(misctools_size_limit 150)
endif()
math(EXPR MISCTOOLS_STRIPPED_SIZE_LIMIT "${misctools_size_limit} * 1024")

function(misctools_keep_small target)
  cmake_parse_arguments(arg "" "" "FAST_SOURCES" ${ARGN})
  # Calls within the library need no way round through symbols that programs might replace, and all
  # others are bound when it is loaded (see Hardening.cmake). Unwinding from calls is what exceptions
  # of Qt need; debuggers have tables of their own for the rest.
  # Elements of containers do not throw when they are copied: Qt need not be ready for it.
  target_compile_definitions(${target} PRIVATE $<${misctools_is_shipped}:QT_NO_EXCEPTIONS>)
  target_compile_options(${target} PRIVATE
    $<${misctools_is_shipped}:-Os>
    $<${misctools_is_shipped}:-ffunction-sections>
    $<${misctools_is_shipped}:-fdata-sections>
    $<${misctools_is_shipped}:-fno-semantic-interposition>
    $<${misctools_is_shipped}:-fno-plt>
    $<${misctools_is_shipped}:-fno-asynchronous-unwind-tables>)
  target_link_options(${target} PRIVATE
    $<${misctools_is_shipped}:LINKER:--gc-sections>
    $<${misctools_is_shipped}:LINKER:-Bsymbolic-functions>
    $<${misctools_is_shipped}:LINKER:-z,noseparate-code>)
  set_property(SOURCE ${arg_FAST_SOURCES} APPEND PROPERTY
    COMPILE_OPTIONS $<${misctools_is_shipped}:-O2>)
  # Link-time optimisation names things after a random number, unless it is told one for each source.
  # A unity build, which is soon done and not shipped, would leave such sources out.
  if(NOT CMAKE_UNITY_BUILD AND NOT MISCTOOLS_INSTRUMENTED)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
      set_property(SOURCE ${source} APPEND PROPERTY
        COMPILE_OPTIONS $<${misctools_is_shipped}:-frandom-seed=${source}>)
    endforeach()
  endif()
  if(misctools_has_ipo AND NOT MISCTOOLS_INSTRUMENTED)
    set_target_properties(${target} PROPERTIES
      INTERPROCEDURAL_OPTIMIZATION_RELEASE ON
      INTERPROCEDURAL_OPTIMIZATION_RELWITHDEBINFO ON
      INTERPROCEDURAL_OPTIMIZATION_MINSIZEREL ON)
  endif()
endfunction()

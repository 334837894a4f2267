# A release build is optimized for size: every application on a machine with little memory loads the
# library, and most of its time is spent in Qt.
include(CheckIPOSupported)
check_ipo_supported(RESULT misctools_has_ipo OUTPUT misctools_ipo_trouble LANGUAGES CXX)

function(misctools_keep_small target)
  target_compile_options(${target} PRIVATE
    $<${misctools_is_release}:-Os>
    $<${misctools_is_release}:-ffunction-sections>
    $<${misctools_is_release}:-fdata-sections>)
  target_link_options(${target} PRIVATE $<${misctools_is_release}:LINKER:--gc-sections>)
  # For reproducible builds, each source gets a seed; otherwise link-time optimization names symbols after
  # a random number. (A unity build has different sources and is not released.)
  if(NOT CMAKE_UNITY_BUILD AND NOT MISCTOOLS_INSTRUMENTED)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
      set_property(SOURCE ${source} APPEND PROPERTY
        COMPILE_OPTIONS $<${misctools_is_release}:-frandom-seed=${source}>)
    endforeach()
  endif()
  if(misctools_has_ipo AND NOT MISCTOOLS_INSTRUMENTED)
    set_target_properties(${target} PROPERTIES
      INTERPROCEDURAL_OPTIMIZATION_RELEASE ON
      INTERPROCEDURAL_OPTIMIZATION_RELWITHDEBINFO ON
      INTERPROCEDURAL_OPTIMIZATION_MINSIZEREL ON)
  endif()
endfunction()

# The library as it is shipped: small, for machines with little memory. Its time is spent in Qt, so
# nothing is lost; the few sources with loops of their own are compiled for speed.
include(CheckIPOSupported)
check_ipo_supported(RESULT misctools_has_ipo OUTPUT misctools_ipo_trouble LANGUAGES CXX)

function(misctools_keep_small target)
  if(MISCTOOLS_FUZZ)
    # There the flags of the fuzzer decide.
    return()
  endif()
  cmake_parse_arguments(arg "" "" "FAST_SOURCES" ${ARGN})
  set(shipped "$<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>")
  # Calls within the library need no way round through symbols that programs might replace, and all
  # others are bound when it is loaded, after which nothing can bend them. Unwinding
  # from calls is what exceptions of Qt need; debuggers have tables of their own for the rest.
  # Elements of containers do not throw when they are copied: Qt need not be ready for it.
  target_compile_definitions(${target} PRIVATE $<${shipped}:QT_NO_EXCEPTIONS>)
  target_compile_options(${target} PRIVATE
    $<${shipped}:-Os>
    $<${shipped}:-ffunction-sections>
    $<${shipped}:-fdata-sections>
    $<${shipped}:-fno-semantic-interposition>
    $<${shipped}:-fno-plt>
    $<${shipped}:-fno-asynchronous-unwind-tables>)
  target_link_options(${target} PRIVATE
    $<${shipped}:LINKER:--gc-sections>
    $<${shipped}:LINKER:-Bsymbolic-functions>
    $<${shipped}:LINKER:-z,relro,-z,now>
    $<${shipped}:LINKER:-z,noseparate-code>)
  set_source_files_properties(${arg_FAST_SOURCES} PROPERTIES COMPILE_OPTIONS $<${shipped}:-O2>)
  if(misctools_has_ipo)
    set_target_properties(${target} PROPERTIES
      INTERPROCEDURAL_OPTIMIZATION_RELEASE ON
      INTERPROCEDURAL_OPTIMIZATION_RELWITHDEBINFO ON
      INTERPROCEDURAL_OPTIMIZATION_MINSIZEREL ON)
  endif()
endfunction()

# With hidden visibility alone, a build without inlining exports inline functions of Qt's exported classes.
# A version script, generated from the markers in the public headers, restricts the exports to the
# public interface in every build.

# misctools_exported_patterns(<result> <text of a header>): the version script's patterns for everything
# that the header marks with MISCTOOLS_EXPORT.
function(misctools_exported_patterns result text)
  set(patterns "")
  string(REGEX MATCHALL "class MISCTOOLS_EXPORT [A-Za-z0-9_]+" classes "${text}")
  foreach(class IN LISTS classes)
    string(REGEX REPLACE ".* " "" class "${class}")
    list(APPEND patterns "${class}::*" "*thunk?to?${class}::*" "*?for?${class}")
  endforeach()
  string(REGEX REPLACE "class MISCTOOLS_EXPORT" "" text "${text}")
  string(REGEX MATCHALL "MISCTOOLS_EXPORT [^(;]*\\(" functions "${text}")
  foreach(function IN LISTS functions)
    string(REGEX REPLACE ".*[ *&]([^ *&(]+)\\($" "\\1" function "${function}")
    # Replaces characters that a version script does not allow; the last one is the parenthesis.
    string(REPLACE "<" "?" function "${function}?*")
    list(APPEND patterns "${function}")
  endforeach()
  set(${result} "${patterns}" PARENT_SCOPE)
endfunction()

function(misctools_export_public_interface target)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h)
  # Configures again when a header changes.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
  set(patterns "")
  foreach(header IN LISTS headers)
    file(READ ${header} text)
    misctools_exported_patterns(of_header "${text}")
    list(APPEND patterns ${of_header})
  endforeach()
  list(REMOVE_DUPLICATES patterns)
  list(JOIN patterns ";\n    " patterns)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.version)
  file(GENERATE OUTPUT ${script} CONTENT
    "{\n  global: extern \"C++\" {\n    ${patterns};\n  };\n  local: *;\n};\n")
  target_link_options(${target} PRIVATE LINKER:--version-script=${script})
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script})
endfunction()

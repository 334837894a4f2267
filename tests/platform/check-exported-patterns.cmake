# Tests the export patterns for names that the public headers do not contain yet.
#
#   cmake -P tests/platform/check-exported-patterns.cmake
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/ExportedSymbols.cmake)

function(check text)
  misctools_exported_patterns(patterns "${text}")
  if(NOT patterns STREQUAL "${ARGN}")
    message(SEND_ERROR "'${text}' returns '${patterns}' instead of '${ARGN}'")
  endif()
endfunction()

function(check_class name)
  check("class MISCTOOLS_EXPORT ${name}\n{\n};\n" "${name}::*" "*thunk?to?${name}::*" "*?for?${name}")
endfunction()

check_class(HashGenerator)
check_class(Crc32)
check_class(Crc32Table)
check_class(Utf8_Text)
check("MISCTOOLS_EXPORT uint crc32(const char* bytes);" "crc32?*")
check("MISCTOOLS_EXPORT QDebug operator<<(QDebug debug, int error);" "operator???*")
check("class Hidden\n{\n};\nvoid hidden();\n")

# The compile options of the project's targets; they are not part of an exported interface.

# Warnings for all targets of this project.
function(misctools_set_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual
    $<$<BOOL:${MISCTOOLS_WERROR}>:-Werror>)
endfunction()

# Additional restrictions for the library: no implicit text conversions, no Qt keywords.
function(misctools_set_strict_qt target)
  target_compile_definitions(${target} PRIVATE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_STRICT_ITERATORS)
endfunction()

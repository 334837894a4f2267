# The compile rules of our own targets; none of this reaches an exported interface.

# Warnings that every target of this project is compiled with.
function(misctools_set_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual
    $<$<BOOL:${MISCTOOLS_WERROR}>:-Werror>)
endfunction()

# What the library itself promises on top: no implicit text conversions, no Qt keywords.
function(misctools_set_strict_qt target)
  target_compile_definitions(${target} PRIVATE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_STRICT_ITERATORS)
endfunction()

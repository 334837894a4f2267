# What makes a mistake in the library end a program rather than serve an attacker.

# The linker's part goes into every build, as it costs nothing: calls are bound when the library is
# loaded, after which nothing can bend them, the stack holds no code, and code is not written to. The
# compiler's part goes into what is shipped: it needs optimisation.
function(misctools_harden target)
  set(shipped "$<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>")
  target_compile_options(${target} PRIVATE
    $<${shipped}:-U_FORTIFY_SOURCE>
    $<${shipped}:-D_FORTIFY_SOURCE=2>
    $<${shipped}:-fstack-protector-strong>)
  target_link_options(${target} PRIVATE
    LINKER:-z,relro,-z,now,-z,noexecstack,-z,text)
endfunction()

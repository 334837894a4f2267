# What makes a mistake in a library end the program rather than serve an attacker.

# misctools_harden(<target>)
#
# The linker's part goes into every build, as it costs nothing: calls are bound when the library is
# loaded, after which nothing can bend them, the stack holds no code, and code is not written to. The
# compiler's part goes into release builds: it needs optimization.
function(misctools_harden target)
  foreach(option IN ITEMS -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
    target_compile_options(${target} PRIVATE $<${misctools_is_shipped}:${option}>)
  endforeach()
  target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack,-z,text)
endfunction()

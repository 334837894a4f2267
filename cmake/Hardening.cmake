# Hardening: a memory error should end the program instead of being exploitable.

# misctools_harden(<target>)
#
# Every build has the linker's part, which is free: calls are bound when the library is loaded and
# cannot be redirected afterwards, the stack is not executable, and code is not writable. Release builds
# also have the compiler's part, which needs optimization.
function(misctools_harden target)
  foreach(option IN ITEMS -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
    target_compile_options(${target} PRIVATE $<${misctools_is_release}:${option}>)
  endforeach()
  target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack,-z,text)
endfunction()

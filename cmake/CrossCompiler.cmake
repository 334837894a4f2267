# Shared by the toolchain files: Debian's cross compiler, and the sysroot from script/cross-sysroot.
set(CMAKE_SYSTEM_NAME Linux)
get_filename_component(CMAKE_SYSROOT
  ${CMAKE_CURRENT_LIST_DIR}/../build/cross/${misctools_architecture}/sysroot ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT})
  message(FATAL_ERROR "${CMAKE_SYSROOT} does not exist; create it with "
    "'script/cross-sysroot ${misctools_architecture}'.")
endif()
set(CMAKE_CXX_COMPILER ${misctools_triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${misctools_triplet})

# Programs come from this machine, everything else from the target.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

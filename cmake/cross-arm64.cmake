# Toolchain file: Debian's compiler for 64-bit ARM.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(misctools_architecture arm64)
set(misctools_triplet aarch64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/CrossCompiler.cmake)

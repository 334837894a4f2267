# Toolchain file: Debian's compiler for 32-bit ARM (ARMv7, hardware floating point, Thumb).
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(misctools_architecture armhf)
set(misctools_triplet arm-linux-gnueabihf)
include(${CMAKE_CURRENT_LIST_DIR}/CrossCompiler.cmake)

# Toolchain file: 64-bit Windows, from Linux with MinGW-w64. The plain names of the compilers may be
# those of the thread model win32, which lacks std::thread.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Libraries and headers are those of the target alone; cmake/cross finds what the host has for both.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_FIND_ROOT_PATH)

# GCC may move vectors to the stack as if it were aligned to 32 bytes, which the calling convention
# of Windows does not promise (https://gcc.gnu.org/bugzilla/show_bug.cgi?id=54412). The assembler
# turns these moves into unaligned ones, which are as fast where the address is aligned.
# Templates make more sections than the plain format of object files can number.
set(CMAKE_CXX_FLAGS_INIT "-Wa,-muse-unaligned-vector-move -Wa,-mbig-obj")
# As much stack as Linux gives to a main thread, instead of 2 MiB.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--stack,8388608")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine.sh)

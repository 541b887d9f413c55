# 32-bit Windows from Linux. The posix thread model is the one whose library has std::thread and std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
# Single-precision arithmetic must round as it does everywhere else, so never on the x87 stack; and callers of a 32-bit
# component keep the stack aligned to 4 bytes only.
set(CMAKE_C_FLAGS_INIT "-march=pentium4 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
# The system's own routines do calculate on the x87 stack. As in every program made by the system's usual compilers, it
# rounds to 53 bits there; mingw would start programs with 64.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static /usr/i686-w64-mingw32/lib/CRT_fp8.o")
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-x86)

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

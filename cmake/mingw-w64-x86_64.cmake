# Cross build for 64-bit Windows with Debian's MinGW-w64 (posix threads), linked statically.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(QUORVANE_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   ${QUORVANE_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QUORVANE_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER  ${QUORVANE_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${QUORVANE_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# Windows programs run here under Wine; ctest starts them through it.
find_program(QUORVANE_WINE NAMES wine wine64)
if(QUORVANE_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${QUORVANE_WINE})
endif()

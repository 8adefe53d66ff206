# Cross-building for Windows with Debian's mingw-w64, for the processor QORVEL_MINGW_ARCH
# (x86_64 or i686) that the preset sets. The posix-thread compilers: the win32-thread ones have
# no std::mutex.
if(NOT QORVEL_MINGW_ARCH)
  set(QORVEL_MINGW_ARCH x86_64)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QORVEL_MINGW_ARCH)
set(triplet ${QORVEL_MINGW_ARCH}-w64-mingw32)
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${QORVEL_MINGW_ARCH})
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

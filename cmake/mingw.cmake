# Cross-compilation with mingw-w64; KVT_MINGW names the architecture (i686 or x86_64). The posix compilers bring the
# standard library's threads and mutexes.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KVT_MINGW)
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${KVT_MINGW})
set(CMAKE_C_COMPILER ${KVT_MINGW}-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER ${KVT_MINGW}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${KVT_MINGW}-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${KVT_MINGW}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

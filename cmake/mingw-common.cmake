# What both MinGW-w64 toolchain files share; each sets TOOLCHAIN_PREFIX,
# CMAKE_SYSTEM_PROCESSOR and the Wine values of its bitness first.
# Everything is linked statically, so nothing but system DLLs is imported.
set(CMAKE_SYSTEM_NAME Windows)

# The runtime's thread model: posix where the tests are built (GoogleTest and
# std::thread need it), win32 for the shipped control, whose runtime is smaller.
if(NOT BREVANTIS_THREADS)
  set(BREVANTIS_THREADS posix)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES BREVANTIS_THREADS)
set(CMAKE_C_COMPILER ${TOOLCHAIN_PREFIX}-gcc-${BREVANTIS_THREADS})
set(CMAKE_CXX_COMPILER ${TOOLCHAIN_PREFIX}-g++-${BREVANTIS_THREADS})
set(CMAKE_RC_COMPILER ${TOOLCHAIN_PREFIX}-windres)
set(WIDL ${TOOLCHAIN_PREFIX}-widl)

set(CMAKE_FIND_ROOT_PATH /usr/${TOOLCHAIN_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

set(WINE_IDL_DIR /usr/include/wine/wine/windows)

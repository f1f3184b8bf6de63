# Cross build of the 32-bit Windows control on Linux with MinGW-w64.
# Everything is linked statically, so nothing but system DLLs is imported.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TOOLCHAIN_PREFIX i686-w64-mingw32)

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
set(WIDL_ARCH -m32)
set(WINEARCH win32)
# Named, never Debian's `wine` wrapper: where 32-bit code runs only under
# emulation, every Wine call must say which loader it means.
set(WINE_LOADER /usr/lib/wine/wine)

set(CMAKE_FIND_ROOT_PATH /usr/${TOOLCHAIN_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

set(WINE_IDL_DIR /usr/include/wine/wine/windows)
set(WINE_TLB_DIR /usr/lib/i386-linux-gnu/wine/i386-windows)

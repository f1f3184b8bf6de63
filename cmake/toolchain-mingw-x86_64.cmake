# Cross build of the 64-bit Windows control on Linux with MinGW-w64, for
# 64-bit hosts (64-bit Office and VBA). Same sources as the 32-bit build.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TOOLCHAIN_PREFIX x86_64-w64-mingw32)

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
set(WIDL_ARCH -m64)
set(WINEARCH win64)
# The 64-bit loader, so that builtin programs (regsvr32, cscript) run as 64-bit ones.
set(WINE_LOADER /usr/lib/wine/wine64)

set(CMAKE_FIND_ROOT_PATH /usr/${TOOLCHAIN_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

set(WINE_IDL_DIR /usr/include/wine/wine/windows)
set(WINE_TLB_DIR /usr/lib/x86_64-linux-gnu/wine/x86_64-windows)

# Cross build of the 64-bit Windows control on Linux with MinGW-w64, for
# 64-bit hosts (64-bit Office and VBA). Same sources as the 32-bit build.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TOOLCHAIN_PREFIX x86_64-w64-mingw32)
set(WIDL_ARCH -m64)
set(WINEARCH win64)
# The 64-bit loader, so that builtin programs (regsvr32, cscript) run as 64-bit ones.
set(WINE_LOADER /usr/lib/wine/wine64)
set(WINE_TLB_DIR /usr/lib/x86_64-linux-gnu/wine/x86_64-windows)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)

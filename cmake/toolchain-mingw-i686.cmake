# Cross build of the 32-bit Windows control on Linux with MinGW-w64.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TOOLCHAIN_PREFIX i686-w64-mingw32)
set(WIDL_ARCH -m32)
set(WINEARCH win32)
# Named, never Debian's `wine` wrapper: where 32-bit code runs only under
# emulation, every Wine call must say which loader it means.
set(WINE_LOADER /usr/lib/wine/wine)
set(WINE_TLB_DIR /usr/lib/i386-linux-gnu/wine/i386-windows)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)

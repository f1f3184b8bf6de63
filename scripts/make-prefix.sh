#!/usr/bin/env bash
# Creates a 32-bit Wine prefix for the control: fonts, self-drawn window
# frames (Xvfb has no window manager). Usage: make-prefix.sh DIR [win32|win64]
set -euo pipefail
dir=$1
arch=${2:-win32}
rm -rf "$dir"
export WINEPREFIX="$dir" WINEARCH="$arch" WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=d"
wineboot -i >/dev/null 2>&1
wineserver -w
mkdir -p "$dir/drive_c/windows/Fonts"
cp /usr/share/wine/fonts/* "$dir/drive_c/windows/Fonts/" 2>/dev/null || true
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Decorated /d N /f >/dev/null 2>&1
# Nor a window manager to wait for when a window closes.
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1
wineserver -w
touch "$dir/.brevantis-ready"

#!/usr/bin/env bash
# Creates a Wine prefix for the control: fonts, self-drawn window frames and
# no window manager to wait for (Xvfb has none).
# Usage: make-prefix.sh RUNNER DIR, RUNNER being the build's wine-run.sh,
# which names the loader and the prefix's architecture.
set -euo pipefail
run=$1 dir=$2
rm -rf "$dir"
export BREVANTIS_WINEPREFIX="$dir" WINEPREFIX="$dir"
"$run" wineboot -i >/dev/null
wineserver -w
mkdir -p "$dir/drive_c/windows/Fonts"
cp /usr/share/wine/fonts/* "$dir/drive_c/windows/Fonts/" 2>/dev/null || true
"$run" reg add 'HKCU\Software\Wine\X11 Driver' /v Decorated /d N /f >/dev/null
"$run" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
wineserver -w
touch "$dir/.brevantis-ready"

#!/usr/bin/env bash
# Makes the prefix of the web and CD tests: a copy of the pristine prefix in
# which the folder CD is drive D: of type CD-ROM.
# Usage: setup_web_prefix.sh PRISTINE DEST CD [win32|win64]
set -euo pipefail
pristine=$1 dest=$2 cd=$3 arch=${4:-win32}
"$(dirname "$0")/../../scripts/copy-prefix.sh" "$pristine" "$dest"
rm -rf "$cd"
mkdir -p "$cd"
ln -s "$cd" "$dest/dosdevices/d:"
export WINEPREFIX="$dest" WINEARCH="$arch" WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=d"
# /reg:64: in a 64-bit prefix the 32-bit reg.exe would write the 32-bit view.
view=()
[[ "$arch" == win64 ]] && view=(/reg:64)
wine reg add 'HKLM\Software\Wine\Drives' /v d: /d cdrom /f "${view[@]}" >/dev/null 2>&1
# The server writes the registry when it exits; the drive types are read
# when it starts again.
wineserver -w

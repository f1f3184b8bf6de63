#!/usr/bin/env bash
# Makes the prefix of the web and CD tests: a copy of the pristine prefix in
# which the folder CD is drive D: of type CD-ROM.
# Usage: setup_web_prefix.sh PRISTINE DEST CD
set -euo pipefail
pristine=$1 dest=$2 cd=$3
"$(dirname "$0")/../../scripts/copy-prefix.sh" "$pristine" "$dest"
rm -rf "$cd"
mkdir -p "$cd"
ln -s "$cd" "$dest/dosdevices/d:"
export WINEPREFIX="$dest" WINEARCH=win32 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=d"
wine reg add 'HKLM\Software\Wine\Drives' /v d: /d cdrom /f >/dev/null 2>&1
# The server writes the registry when it exits; the drive types are read
# when it starts again.
wineserver -w

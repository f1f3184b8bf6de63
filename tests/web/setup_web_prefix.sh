#!/usr/bin/env bash
# Makes the prefix of the web and CD tests: a copy of the pristine prefix in
# which the folder CD is drive D: of type CD-ROM.
# Usage: setup_web_prefix.sh RUNNER PRISTINE DEST CD (RUNNER: the build's wine-run.sh)
set -euo pipefail
run=$1 pristine=$2 dest=$3 cd=$4
"$(dirname "$0")/../../scripts/copy-prefix.sh" "$pristine" "$dest"
rm -rf "$cd"
mkdir -p "$cd"
ln -s "$cd" "$dest/dosdevices/d:"
export BREVANTIS_WINEPREFIX="$dest" WINEPREFIX="$dest"
"$run" reg add 'HKLM\Software\Wine\Drives' /v d: /d cdrom /f >/dev/null
# The server writes the registry when it exits; the drive types are read
# when it starts again.
wineserver -w

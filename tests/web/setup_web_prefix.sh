#!/usr/bin/env bash
# Usage: setup_web_prefix.sh RUNNER PRISTINE DEST CD (RUNNER: the build's wine-run.sh). DEST becomes a copy
# of PRISTINE whose drive D: is the folder CD, a CD-ROM holding the catalogue page zo\index.htm.
set -euo pipefail
run=$1 pristine=$2 dest=$3 cd=$4
"$(dirname "$0")/../../scripts/copy-prefix.sh" "$pristine" "$dest"
rm -rf "$cd" && mkdir -p "$cd/zo" && echo '<html></html>' >"$cd/zo/index.htm"
ln -s "$cd" "$dest/dosdevices/d:"
BREVANTIS_WINEPREFIX="$dest" "$run" reg add 'HKLM\Software\Wine\Drives' /v d: /d cdrom /f >/dev/null
WINEPREFIX="$dest" wineserver -w  # the registry is written as the server exits; drive types are read as it starts

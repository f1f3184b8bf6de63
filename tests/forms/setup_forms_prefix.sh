#!/usr/bin/env bash
# Makes the prefix of the screen tests: a copy of the pristine prefix whose
# windows are not left to a window manager. Xvfb has none, and Wine would
# wait two seconds for one each time a form closes.
# Usage: setup_forms_prefix.sh PRISTINE DEST [win32|win64]
set -euo pipefail
pristine=$1 dest=$2 arch=${3:-win32}
"$(dirname "$0")/../../scripts/copy-prefix.sh" "$pristine" "$dest"
export WINEPREFIX="$dest" WINEARCH="$arch" WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=d"
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1
wineserver -w

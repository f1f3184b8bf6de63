#!/usr/bin/env bash
# Replaces DEST with a copy of the prefix SOURCE. Usage: copy-prefix.sh SOURCE DEST
set -euo pipefail
src=$1 dest=$2
[[ -d "$dest" ]] && { WINEPREFIX="$dest" wineserver -k 2>/dev/null || true; }
rm -rf "$dest"
cp -a "$src" "$dest"

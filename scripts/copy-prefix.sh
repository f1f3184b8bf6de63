#!/usr/bin/env bash
# Replaces DEST with a copy of the prefix SOURCE. Usage: copy-prefix.sh SOURCE DEST
# The system's DLLs and programs (system32, syswow64: nine tenths of a
# prefix, 1.2 GB in a 64-bit one) are never written by the tests, so the copy
# links them to SOURCE's files; everything else, the registry first, is copied.
set -euo pipefail
src=$1 dest=$2
[[ -d "$dest" ]] && { WINEPREFIX="$dest" wineserver -k 2>/dev/null || true; }
rm -rf "$dest"
mkdir -p "$dest"
shared=(drive_c/windows/system32 drive_c/windows/syswow64)
tar -C "$src" "${shared[@]/#/--exclude=./}" -cf - . | tar -C "$dest" -xf -
for dir in "${shared[@]}"; do
  [[ -d "$src/$dir" ]] && cp -al "$src/$dir" "$dest/$dir"
done
exit 0

#!/usr/bin/env bash
# installer_test.sh WINE_RUN PRISTINE_PREFIX PREFIX PACKAGE OLDER_PACKAGE ROWS: the package under Wine's
# msiexec in a prefix of its own, over an older one; a script creates the control by ProgID; the
# uninstall leaves the registry and the system folders as they were. ROWS: registration_rows.tsv.
set -euo pipefail
if [[ ! -f $4 ]]; then echo "No package $4: its build did not make one"; exit 77; fi
run=$1 prefix=$3 package=$4 here=$(cd "$(dirname "$0")" && pwd) failures=0
export BREVANTIS_WINEPREFIX=$prefix
"$here/../../scripts/copy-prefix.sh" "$2" "$prefix"
work=$prefix/installer-test && mkdir -p "$work"
win() { printf 'Z:%s' "${1//\//\\}"; }
check() { if "${@:2}"; then echo "ok: $1"; else echo "FAIL: $1"; failures=$((failures + 1)); fi; }
# Ours: the control's name and the class, interface and library keys its registration writes.
{ echo Brevantis; grep -oE '^(CLSID|Interface|TypeLib)\\\{[^}]*\}' "$6" | cut -d'\' -f2; } | sort -u > "$work/ours"
snapshot() {  # what of ours a user could find: registry lines, and the system folders' files
  for hive in HKLM HKCU HKCR; do
    "$run" reg export $hive "$(win "$work/$hive.reg")" /y >/dev/null
    iconv -f UTF-16LE -t UTF-8 "$work/$hive.reg" | tr -d '\r' | grep -iF -f "$work/ours" || true
  done > "$work/$1"
  (cd "$prefix/drive_c/windows" && find system32 $([[ -d syswow64 ]] && echo syswow64) -maxdepth 1 | sort) >> "$work/$1"
}
# A 32-bit package on 64-bit Windows serves 32-bit hosts from SysWOW64.
folder=system32 && [[ $package == *x86* && -d $prefix/drive_c/windows/syswow64 ]] && folder=syswow64
snapshot before
check "older package installs" "$run" msiexec /i "$(win "$5")" /qn
check "this package upgrades it" "$run" msiexec /i "$(win "$package")" /qn
check "the control lies in the system folder of its bitness" \
  cmp "$prefix/drive_c/windows/$folder/Brevantis.ocx" "$(dirname "$package")/Brevantis.ocx"
check "a script creates it by ProgID" grep -q '^created Ostrel' \
  < <("$run" "C:\\windows\\$folder\\cscript.exe" //nologo "$(win "$here/create_by_progid.vbs")")
check "uninstall succeeds" "$run" msiexec /x "$(win "$package")" /qn
snapshot after
check "nothing of ours is left" diff "$work/before" "$work/after"
[[ $failures -eq 0 ]] && echo "ALL OK"
exit "$failures"

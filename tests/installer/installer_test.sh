#!/usr/bin/env bash
# The installer package under Wine's msiexec, in a prefix of its own: an older
# package, then this one over it (an upgrade), the control created by ProgID
# from a script, a repair of a deleted file and key, and an uninstall that
# leaves the registry and the system folders as they were before.
#   installer_test.sh WINE_RUN PRISTINE_PREFIX PREFIX PACKAGE OLDER_PACKAGE VERSION ROWS
# ROWS is the registration's list of values (registration_rows.tsv).
set -euo pipefail
if [[ ! -f $4 ]]; then echo "No package $4: its build did not make one"; exit 77; fi
run=$1 pristine=$2 prefix=$3 package=$4 older=$5 version=$6 rows=$7
here=$(cd "$(dirname "$0")" && pwd)
export BREVANTIS_WINEPREFIX=$prefix
"$here/../../scripts/copy-prefix.sh" "$pristine" "$prefix"
work=$prefix/installer-test
mkdir -p "$work"
win() { printf 'Z:%s' "${1//\//\\}"; }
failures=0
check() {  # check DESCRIPTION COMMAND...: runs the command, reports
  if "${@:2}"; then echo "ok: $1"; else echo "FAIL: $1"; failures=$((failures + 1)); fi
}

# Ours: what names the control, and the class, interface and library keys
# its registration writes. (Wine itself adds keys on the way: cscript
# registers its own type library, msiexec leaves empty Installer keys.)
{ echo Brevantis; grep -oE '^(CLSID|Interface|TypeLib)\\\{[^}]*\}' "$rows" | cut -d'\' -f2; } | sort -u > "$work/ours"

# Everything of ours a user could find: registry lines and system folder files.
snapshot() {
  local hive
  for hive in HKLM HKCU HKCR; do
    "$run" reg export "$hive" "$(win "$work/$hive.reg")" /y >/dev/null
    iconv -f UTF-16LE -t UTF-8 "$work/$hive.reg" | tr -d '\r' | grep -iF -f "$work/ours" || true
  done > "$work/$1.reg"
  (cd "$prefix/drive_c/windows" && find system32 $([[ -d syswow64 ]] && echo syswow64) -maxdepth 1 | sort) \
    > "$work/$1.files"
}
msiexec() { "$run" msiexec "$@" /qn; }
# A 32-bit package on 64-bit Windows serves 32-bit hosts: its files go to
# SysWOW64, its keys to the 32-bit registry view, and a 32-bit script host
# must find the control.
system_folder=system32 cscript=cscript view=()
if [[ $package == *x86* && -d $prefix/drive_c/windows/syswow64 ]]; then
  system_folder=syswow64 cscript='C:\windows\syswow64\cscript.exe' view=(/reg:32)
fi
created_by_progid() {
  "$run" "$cscript" //nologo "$(win "$here/create_by_progid.vbs")" | grep -q '^created Ostrel Edizioni'
}
# The versions of ours that Add/Remove Programs lists.
installed_versions() {
  "$run" reg export 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' "$(win "$work/arp.reg")" /y "${view[@]}" >/dev/null
  iconv -f UTF-16LE -t UTF-8 "$work/arp.reg" | tr -d '\r' |
    awk 'BEGIN { RS = "" } /"DisplayName"="Brevantis ActiveX Control"/ {
           match($0, /"DisplayVersion"="[^"]*"/); print substr($0, RSTART + 18, RLENGTH - 19) }'
}
installed_ocx=$prefix/drive_c/windows/$system_folder/Brevantis.ocx

snapshot before
check "older package installs" msiexec /i "$(win "$older")"
check "this package installs over it" msiexec /i "$(win "$package")"
check "the older version is replaced by $version" test "$(installed_versions)" = "$version"
check "the control lies in the system folder of its bitness" cmp -s "$installed_ocx" "$(dirname "$package")/Brevantis.ocx"
check "the control is created by ProgID" created_by_progid

rm -f "$installed_ocx"
"$run" reg delete 'HKCR\BrevantisLib.Brevantis' /f "${view[@]}" >/dev/null
# What msiexec /famus asks for, spelled as properties: Wine's msiexec
# refuses /f with a package path.
check "repair succeeds" msiexec /i "$(win "$package")" REINSTALL=ALL REINSTALLMODE=amus
check "repair puts the control back" cmp -s "$installed_ocx" "$(dirname "$package")/Brevantis.ocx"
check "repair puts the ProgID back" created_by_progid

check "uninstall succeeds" msiexec /x "$(win "$package")"
snapshot after
check "the registry holds nothing of ours" diff "$work/before.reg" "$work/after.reg"
check "the system folders hold nothing of ours" diff "$work/before.files" "$work/after.files"
[[ $failures -eq 0 ]] && echo "ALL OK"
exit "$failures"

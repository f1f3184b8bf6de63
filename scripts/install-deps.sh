#!/usr/bin/env bash
# Installs the cross toolchains, Wine and Xvfb through apt, and any further
# packages named as arguments (fuzz/run.sh adds clang and its runtimes).
# fp-utils-3.2.2 gives chmcmd, the help file compiler; wixl builds the
# installer packages.
# Idempotent and quiet when everything is already there.
#   install-deps.sh [PACKAGE[/SUITE]...]
# A mirror caught mid-sync (an index of unexpected size, an expired Release
# file, amd64 and i386 indexes out of step) is retried and then pinned to the
# release; if packages are still missing the script names them and fails.
set -euo pipefail

packages=(wine wine32:i386 wine64 libwine-dev fonts-wine g++-mingw-w64-i686 g++-mingw-w64-x86-64
          mingw-w64-tools mingw-w64-i686-dev mingw-w64-x86-64-dev xvfb xauth imagemagick cmake make
          googletest python3 fp-utils-3.2.2 wixl "$@")

missing_packages() {
  local p status
  for p in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || echo "$p"
  done
}
mapfile -t missing < <(missing_packages)
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo_cmd=()
[[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)
apt_get() { "${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o Acquire::Retries=3 "$@"; }

echo "Installing: ${missing[*]}"
if ! dpkg --print-foreign-architectures | grep -qx i386; then
  "${sudo_cmd[@]}" dpkg --add-architecture i386
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
for attempt in 1 2 3; do
  # A failing index is reported but leaves the others usable; a later attempt
  # may find the mirror done syncing, and accepts a Release file past its date.
  valid=()
  [[ $attempt -gt 1 ]] && valid=(-o Acquire::Check-Valid-Until=false)
  apt_get update -qq "${valid[@]}" >"$log" 2>&1 || true
  if apt_get install -y -qq --no-install-recommends "${missing[@]}" >>"$log" 2>&1; then
    exit 0
  fi
  # The amd64 and i386 indexes can be out of step: pin the release then.
  if apt_get install -y -qq --no-install-recommends -t bookworm "${missing[@]}" >>"$log" 2>&1; then
    exit 0
  fi
  mapfile -t missing < <(missing_packages)
  [[ ${#missing[@]} -eq 0 ]] && exit 0
  [[ $attempt -lt 3 ]] && { echo "apt failed (attempt $attempt of 3); retrying in $((attempt * 20)) s"; sleep $((attempt * 20)); }
done
grep -E '^(E|W):' "$log" | sort -u >&2 || true
echo "Could not install: ${missing[*]}. Check the machine's apt sources and network, then run again." >&2
exit 1

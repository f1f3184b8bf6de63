#!/usr/bin/env bash
# Installs the cross toolchains, Wine and Xvfb through apt, and any further
# packages named as arguments (fuzz/run.sh adds clang and its runtimes).
# Idempotent and quiet when everything is already there.
set -euo pipefail

packages=(wine wine32:i386 wine64 libwine-dev fonts-wine g++-mingw-w64-i686 g++-mingw-w64-x86-64
          mingw-w64-tools mingw-w64-i686-dev mingw-w64-x86-64-dev xvfb xauth imagemagick cmake make
          googletest python3 "$@")

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo_cmd=()
[[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)

echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
if ! dpkg --print-foreign-architectures | grep -qx i386; then
  "${sudo_cmd[@]}" dpkg --add-architecture i386
fi
"${sudo_cmd[@]}" apt-get update -qq || true
if ! "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null; then
  # The amd64 and i386 indexes can be out of step; pin the release then.
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends -t bookworm "${missing[@]}" >/dev/null
fi

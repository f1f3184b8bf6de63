# Shared by demo.sh and test.sh: dependencies, the builds, and a display.
# shellcheck shell=bash
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# The 32-bit build (the shipped control) and the 64-bit one from the same sources.
build="${BREVANTIS_BUILD_DIR:-$repo/build}"
build64="${BREVANTIS_BUILD_DIR_64:-${build}64}"

install_dependencies() {
  bash "$repo/scripts/install-deps.sh"
}

# build_in DIR TOOLCHAIN [TARGET...]: configures DIR for the toolchain file
# and builds the targets (all when none are named).
build_in() {
  local dir=$1 toolchain=$2
  shift 2
  cmake -S "$repo" -B "$dir" -DCMAKE_TOOLCHAIN_FILE="$repo/cmake/$toolchain" >/dev/null
  local targets=()
  for t in "$@"; do targets+=(--target "$t"); done
  cmake --build "$dir" -j"$(nproc)" "${targets[@]}"
}

build() { build_in "$build" toolchain-mingw-i686.cmake "$@"; }
build64() { build_in "$build64" toolchain-mingw-x86_64.cmake "$@"; }

# Windows get a display: the caller's, or a private Xvfb for this run.
ensure_display() {
  if [[ -n "${DISPLAY:-}" ]]; then return; fi
  local n
  for n in $(seq 90 140); do
    [[ -e /tmp/.X$n-lock || -e /tmp/.X11-unix/X$n ]] && continue
    Xvfb ":$n" -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb_pid=$!
    trap 'kill "$xvfb_pid" 2>/dev/null || true' EXIT
    export DISPLAY=":$n"
    for _ in $(seq 50); do
      [[ -e /tmp/.X11-unix/X$n ]] && return
      sleep 0.1
    done
    return
  done
  echo "No free display for Xvfb" >&2
  exit 1
}

windows_path() {
  printf 'Z:%s' "${1//\//\\}"
}

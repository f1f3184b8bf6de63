# Shared by demo.sh and test.sh: dependencies, the build, and a display.
# shellcheck shell=bash
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="${BREVANTIS_BUILD_DIR:-$repo/build}"

install_dependencies() {
  bash "$repo/scripts/install-deps.sh"
}

# Configures the build folder and builds the given targets (all when none).
build() {
  cmake -S "$repo" -B "$build" -DCMAKE_TOOLCHAIN_FILE="$repo/cmake/toolchain-mingw-i686.cmake" >/dev/null
  local targets=()
  for t in "$@"; do targets+=(--target "$t"); done
  cmake --build "$build" -j"$(nproc)" "${targets[@]}"
}

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

# Shared by demo.sh, test.sh and bench.sh: dependencies, what the machine can
# run, the builds, and a display.
# shellcheck shell=bash
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# The 32-bit build (the shipped control) and the 64-bit one from the same sources.
build="${BREVANTIS_BUILD_DIR:-$repo/build}"
build64="${BREVANTIS_BUILD_DIR_64:-${build}64}"

sudo_cmd=()
[[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)

# Commands run when the script ends, in the order they were added.
exit_steps=()
at_exit() {
  exit_steps+=("$1")
  trap 'for step in "${exit_steps[@]}"; do eval "$step" || true; done' EXIT
}

install_dependencies() {
  bash "$repo/scripts/install-deps.sh"
}

# --- Can this machine run the 32-bit control? --------------------------------
# Some hypervisors have no 32-bit x86 mode: no 32-bit Linux program starts, so
# neither does Wine's 32-bit loader. There the 32-bit side runs under qemu-user
# (8 or later: 7.2 ignores MAP_FIXED_NOREPLACE and Wine hangs), registered in
# binfmt_misc for i386 executables. decide_32bit sets run32 to native,
# emulated or none, and no32_reason when none.
loader32=/usr/lib/wine/wine
binfmt=/proc/sys/fs/binfmt_misc
handler="$binfmt/qemu-i386"
qemu=/usr/bin/qemu-i386
# i386 ELF executables, as qemu's own binfmt configuration matches them.
i386_magic='\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00'
i386_mask='\xff\xff\xff\xff\xff\xfe\xfe\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'

write_as_root() { printf '%s\n' "$2" | "${sudo_cmd[@]}" tee "$1" >/dev/null; }
loader32_starts() { "$loader32" --version >/dev/null 2>&1; }

handler_enabled() { [[ -f "$handler" ]] && grep -qx enabled "$handler"; }

# Asked with the i386 handler switched off for the moment: it would answer
# for the processor.
runs_32bit_natively() {
  local rc=0
  if handler_enabled; then
    write_as_root "$handler" 0
    loader32_starts || rc=$?
    write_as_root "$handler" 1
    return $rc
  fi
  loader32_starts
}

qemu_usable() {
  local major
  [[ -x "$qemu" ]] || return 1
  major=$("$qemu" --version | sed -n 's/^qemu-i386 version \([0-9]*\).*/\1/p')
  [[ "${major:-0}" -ge 8 ]]
}

# The machine's own Debian mirror, for its backports suite.
debian_mirror() {
  local uri
  uri=$(cat /etc/apt/sources.list.d/*.sources 2>/dev/null |
        awk 'BEGIN { RS = "" } /Suites:[^\n]*bookworm([ \n]|$)/ && match($0, /URIs: *[^ \n]+/) {
               split(substr($0, RSTART, RLENGTH), f, / +/); print f[2]; exit }')
  [[ -n "$uri" ]] || uri=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
        sed 's/\[[^]]*\]//' | awk '$1 == "deb" && $3 == "bookworm" { print $2; exit }')
  echo "${uri:-http://deb.debian.org/debian}"
}

install_qemu() {
  local list=/etc/apt/sources.list.d/brevantis-backports.list
  if ! apt-cache policy 2>/dev/null | grep -q 'bookworm-backports'; then
    write_as_root "$list" "deb $(debian_mirror) bookworm-backports main"
  fi
  bash "$repo/scripts/install-deps.sh" qemu-user/bookworm-backports
}

# Registers qemu for i386 executables, machine-wide: called only where they
# cannot run natively (or when asked to by BREVANTIS_FORCE_EMULATION=1).
setup_emulation() {
  if [[ "${BREVANTIS_NO_EMULATION:-}" == 1 ]]; then
    no32_reason="emulation is turned off (BREVANTIS_NO_EMULATION=1)"; return 1
  fi
  if ! qemu_usable && ! { install_qemu >/dev/null && qemu_usable; }; then
    no32_reason="qemu-user 8 or later could not be installed from bookworm-backports"; return 1
  fi
  if ! mountpoint -q "$binfmt" && ! "${sudo_cmd[@]}" mount -t binfmt_misc binfmt_misc "$binfmt" 2>/dev/null; then
    no32_reason="binfmt_misc cannot be mounted here"; return 1
  fi
  if [[ -f "$handler" ]] && ! grep -qx "interpreter $qemu" "$handler"; then
    write_as_root "$handler" -1
  fi
  if [[ ! -f "$handler" ]]; then
    echo "Registering $qemu for i386 executables in binfmt_misc: from now on this machine starts every 32-bit x86 program through it."
    if ! write_as_root "$binfmt/register" ":qemu-i386:M::$i386_magic:$i386_mask:$qemu:F" 2>/dev/null; then
      no32_reason="binfmt_misc refused the i386 handler"; return 1
    fi
    [[ "${BREVANTIS_FORCE_EMULATION:-}" == 1 ]] && at_exit "write_as_root '$handler' -1"
  fi
  write_as_root "$handler" 1
  loader32_starts || { no32_reason="Wine's 32-bit loader does not start even under qemu"; return 1; }
}

decide_32bit() {
  no32_reason=
  if [[ "${BREVANTIS_FORCE_EMULATION:-}" != 1 ]] && runs_32bit_natively; then
    run32=native
    if handler_enabled; then
      # Someone else's choice for the machine: left as it is, but timed as what it is.
      run32=emulated
      echo "This machine runs 32-bit x86 code natively, but the i386 handler in binfmt_misc starts 32-bit programs through $(sed -n 's/^interpreter //p' "$handler"); left as it is."
    else
      echo "This machine runs 32-bit x86 code natively."
    fi
  elif setup_emulation; then
    run32=emulated
    local why="This machine cannot run 32-bit x86 code natively"
    [[ "${BREVANTIS_FORCE_EMULATION:-}" == 1 ]] && why="BREVANTIS_FORCE_EMULATION=1"
    echo "$why: the 32-bit control runs under qemu-user emulation, 3 to 5 times slower."
  else
    run32=none
    echo "This machine cannot run 32-bit x86 code, and $no32_reason."
  fi
}

# --- Builds ---------------------------------------------------------------------
# build_in DIR TOOLCHAIN [TARGET...]: configures DIR for the toolchain file
# and builds the targets (all when none are named).
build_in() {
  local dir=$1 toolchain=$2
  shift 2
  cmake -S "$repo" -B "$dir" -DCMAKE_TOOLCHAIN_FILE="$repo/cmake/$toolchain" \
    -DBREVANTIS_X86_BUILD_DIR="$build" -DBREVANTIS_EMULATED="$([[ "${run32:-}" == emulated && $toolchain == *i686* ]] && echo ON || echo OFF)" >/dev/null
  local targets=()
  for t in "$@"; do targets+=(--target "$t"); done
  cmake --build "$dir" -j"$(nproc)" "${targets[@]}"
}

build() { build_in "$build" toolchain-mingw-i686.cmake "$@"; }
build64() { build_in "$build64" toolchain-mingw-x86_64.cmake "$@"; }

# --- Display ------------------------------------------------------------------
# Windows get a display: the caller's, or a private Xvfb for this run.
ensure_display() {
  if [[ -n "${DISPLAY:-}" ]]; then return; fi
  local n
  for n in $(seq 90 140); do
    [[ -e /tmp/.X$n-lock || -e /tmp/.X11-unix/X$n ]] && continue
    Xvfb ":$n" -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb_pid=$!
    at_exit 'kill "$xvfb_pid" 2>/dev/null'
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

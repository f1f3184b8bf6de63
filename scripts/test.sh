#!/usr/bin/env bash
# Builds the 64-bit and the 32-bit control with their tests and runs every
# test of both under Wine and Xvfb through CTest. Where the machine cannot run
# 32-bit code, the 32-bit suite runs under emulation, or is left out with the
# reason said (the 32-bit control is still built).
source "$(dirname "$0")/common.sh"

install_dependencies
decide_32bit
build64
if [[ $run32 == none ]]; then build Brevantis; else build; fi
ensure_display

status=0
echo "== 64-bit Brevantis.ocx: $build64"
(cd "$build64" && ctest --output-on-failure -j"$(nproc)") || status=1
if [[ $run32 == none ]]; then
  echo "== The 32-bit suite was not run: this machine cannot run 32-bit x86 code, and $no32_reason."
else
  echo "== 32-bit Brevantis.ocx ($run32): $build"
  (cd "$build" && ctest --output-on-failure -j"$(nproc)") || status=1
fi
exit $status

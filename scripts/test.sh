#!/usr/bin/env bash
# Builds the 32-bit and the 64-bit control with their tests and runs every
# test of both under Wine and Xvfb through CTest.
source "$(dirname "$0")/common.sh"

install_dependencies
build
build64
ensure_display

status=0
echo "== 64-bit Brevantis.ocx: $build64"
(cd "$build64" && ctest --output-on-failure -j"$(nproc)") || status=1
echo "== 32-bit Brevantis.ocx: $build"
(cd "$build" && ctest --output-on-failure -j"$(nproc)") || status=1
exit $status

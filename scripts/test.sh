#!/usr/bin/env bash
# Builds everything and runs every test under Wine and Xvfb through CTest.
source "$(dirname "$0")/common.sh"

install_dependencies
build
ensure_display

cd "$build"
ctest --output-on-failure -j"$(nproc)"

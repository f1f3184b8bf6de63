#!/usr/bin/env bash
# Builds Brevantis.ocx and the demo host, registers the control in the build's
# private Wine prefix and runs the demo host there.
source "$(dirname "$0")/common.sh"

install_dependencies
build Brevantis demo_host wineprefix
ensure_display

run="$build/wine-run.sh"
"$run" regsvr32 /s "$(windows_path "$build/Brevantis.ocx")"
echo "Registered $build/Brevantis.ocx in $build/wineprefix"
"$run" "$(windows_path "$build/demo_host.exe")"

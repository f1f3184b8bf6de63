#!/usr/bin/env bash
# Builds Brevantis.ocx and the demo host, registers the control in the build's
# private Wine prefix and runs the demo host there.
source "$(dirname "$0")/common.sh"

install_dependencies
build Brevantis demo_host demo_browser wineprefix
ensure_display

run="$build/wine-run.sh"
"$run" regsvr32 /s "$(windows_path "$build/Brevantis.ocx")"
# The prefix has no web browser: the demo's own opens .htm files.
"$run" reg add 'HKCR\.htm' /ve /d htmlfile /f >/dev/null
"$run" reg add 'HKCR\htmlfile\shell\open\command' /ve /f \
  /d "\"$(windows_path "$build/demo_browser.exe")\" \"%1\"" >/dev/null
echo "Registered $build/Brevantis.ocx in $build/wineprefix"
"$run" "$(windows_path "$build/demo_host.exe")"

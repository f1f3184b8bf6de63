#!/usr/bin/env bash
# Builds Brevantis.ocx and the demo host, registers the control in the build's
# private Wine prefix and runs the demo host there: the 32-bit control, or the
# 64-bit one where the machine can run no 32-bit code at all.
source "$(dirname "$0")/common.sh"

install_dependencies
decide_32bit
targets=(Brevantis demo_host demo_browser wineprefix)
if [[ $run32 == none ]]; then
  echo "The demo runs on the 64-bit control instead."
  build64 "${targets[@]}"
  build=$build64
else
  build "${targets[@]}"
fi
ensure_display

run="$build/wine-run.sh"
"$run" regsvr32 /s "$(windows_path "$build/Brevantis.ocx")"
# The prefix has no web browser: the demo's own opens .htm files.
"$run" reg add 'HKCR\.htm' /ve /d htmlfile /f >/dev/null
"$run" reg add 'HKCR\htmlfile\shell\open\command' /ve /f \
  /d "\"$(windows_path "$build/demo_browser.exe")\" \"%1\"" >/dev/null
echo "Registered $build/Brevantis.ocx in $build/wineprefix"
"$run" "$(windows_path "$build/demo_host.exe")"

#!/usr/bin/env bash
# Builds the 32-bit control (the 64-bit one where no 32-bit code can run) and
# its benchmarks and prints every figure:
# the OCX's size and imports, load and instance costs, property access,
# Encrypt/Decrypt against the bare CryptoAPI, reachability latencies.
# Not a test: figures vary with the machine. docs/performance.md keeps the
# latest ones.
source "$(dirname "$0")/common.sh"

install_dependencies
decide_32bit
targets=(Brevantis wineprefix control_bench crypto_bench reachability_bench)
if [[ $run32 == none ]]; then build64 "${targets[@]}"; build=$build64; else build "${targets[@]}"; fi
ensure_display
run="$build/wine-run.sh"

echo "== Brevantis.ocx"
for dir in "$build" "$build64"; do
  [[ -f "$dir/Brevantis.ocx" ]] || continue
  size=$(stat -c %s "$dir/Brevantis.ocx")
  objdump=i686-w64-mingw32-objdump
  [[ "$dir" == "$build64" ]] && objdump=x86_64-w64-mingw32-objdump
  printf '%s: %d bytes, %.2f of the 256 KiB target; imports: %s\n' "$dir/Brevantis.ocx" "$size" \
    "$(echo "$size / 262144" | bc -l)" "$($objdump -p "$dir/Brevantis.ocx" | awk '/DLL Name/ {printf "%s ", $3}')"
done

"$run" regsvr32 /s "$(windows_path "$build/Brevantis.ocx")"
echo "== The control through COM"
"$run" "$(windows_path "$build/control_bench.exe")"
echo "== Encrypt and Decrypt"
"$run" "$(windows_path "$build/crypto_bench.exe")"
echo "== Reachability"
"$run" "$(windows_path "$build/bench/reachability_bench.exe")"

#!/usr/bin/env bash
# Builds the saved-properties decoder's fuzz target with clang, libFuzzer and
# the sanitizers, checks that the committed seed corpus is what the encoder
# writes, runs the codec tests natively, then fuzzes a copy of the corpus.
#   fuzz/run.sh [RUNS]    RUNS executions, 1000000 by default
# Builds into $BREVANTIS_FUZZ_BUILD_DIR (default build-fuzz/, kept out of git).
# Exits non-zero on any failure; a crashing input is left in BUILD/artifacts/.
set -euo pipefail

repo=$(cd "$(dirname "$0")/.." && pwd)
build="${BREVANTIS_FUZZ_BUILD_DIR:-$repo/build-fuzz}"
runs="${1:-1000000}"

bash "$repo/scripts/install-deps.sh" clang libclang-rt-14-dev
cmake -S "$repo/fuzz" -B "$build" -DCMAKE_CXX_COMPILER=clang++ >/dev/null
cmake --build "$build" -j"$(nproc)"

rm -rf "$build/seeds" && mkdir -p "$build/seeds"
"$build/make_seed_corpus" "$build/seeds"
if ! diff -r "$repo/fuzz/corpus" "$build/seeds"; then
  echo "fuzz/corpus is not what the encoder writes now; regenerate it:" >&2
  echo "  $build/make_seed_corpus $repo/fuzz/corpus" >&2
  exit 1
fi

"$build/codec_test"

# New inputs go into the copy; the regressions are read as extra seeds.
rm -rf "$build/corpus" "$build/artifacts"
mkdir -p "$build/artifacts"
cp -r "$repo/fuzz/corpus" "$build/corpus"
"$build/codec_fuzzer" -runs="$runs" -print_final_stats=1 -dict="$repo/fuzz/codec.dict" \
  -artifact_prefix="$build/artifacts/" "$build/corpus" \
  "$repo/fuzz/regressions/accepted" "$repo/fuzz/regressions/rejected"

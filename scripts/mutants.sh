#!/usr/bin/env bash
# Mutation testing: plants one small fault at a time into a copy of the
# sources (build-mutants/), rebuilds it, runs the tests of the mutated folder
# and reports each mutant as killed or survived. Same seed, same mutants.
#   scripts/mutants.sh [--seed N] [--count N] [--bits 64|32] [--folders com,web]
#                      [--all-tests] [--list] [--timeout-factor F]
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

args=("$@")
bits=64 list=0
for ((i = 0; i < ${#args[@]}; i++)); do
  case ${args[i]} in
    --bits) bits=${args[i + 1]:-64} ;;
    --bits=*) bits=${args[i]#--bits=} ;;
    --list|-h|--help) list=1 ;;
  esac
done

if [[ $list == 1 ]]; then
  exec python3 "$repo/scripts/mutants.py" "$@"
fi

# The copy builds with Ninja, whose parallel links keep a mutant's rebuild short.
bash "$repo/scripts/install-deps.sh" ninja-build

if [[ $bits == 32 ]]; then
  decide_32bit
  if [[ $run32 == none ]]; then
    echo "No 32-bit mutation run here: use --bits 64." >&2
    exit 1
  fi
  [[ $run32 == emulated ]] && args+=(--emulated)
fi
ensure_display
python3 "$repo/scripts/mutants.py" "${args[@]}"

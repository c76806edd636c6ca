#!/usr/bin/env bash
# The long monkey run: random events over the whole app under random help desk faults, on many
# seeds, under AddressSanitizer and UBSan. A failing seed prints its steps and the command that
# replays it (belva-monkey --seed N --events M).
# Usage: scripts/monkey.sh [first seed, default 1] [seeds, default 100] [events per seed, default 1000]
set -euo pipefail
cd "$(dirname "$0")/.."
first="${1:-1}"
count="${2:-100}"
events="${3:-1000}"
for value in "$first" "$count" "$events"; do
  [[ "$value" =~ ^[0-9]+$ ]] || { echo "usage: scripts/monkey.sh [first seed] [seeds] [events per seed]" >&2; exit 2; }
done
scripts/setup.sh
cmake --preset test >/dev/null
cmake --build --preset test --target belva-monkey
build/test/tests/monkey/belva-monkey --seed "$first" --count "$count" --events "$events"

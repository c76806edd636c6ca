#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each on its seed corpus for a bounded time.
# Usage: scripts/fuzz.sh [seconds per target, default 60]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
scripts/setup.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
shopt -s nullglob
for corpus in fuzz/corpus/*/; do
  name="$(basename "$corpus")"
  binary="build/fuzz/fuzz/$name"
  [ -x "$binary" ] || { echo "no fuzz target for corpus $name"; exit 1; }
  work="$(mktemp -d)"
  cp -r "$corpus"/. "$work"/
  echo "== fuzzing $name for ${seconds}s"
  ASAN_OPTIONS=detect_leaks=1 "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -print_final_stats=1 "$work" 2>&1 | tail -n 12
  rm -rf "$work"
done

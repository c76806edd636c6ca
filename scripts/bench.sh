#!/usr/bin/env bash
# Builds the release preset and runs the benchmark program; extra arguments go to it (e.g. --json).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target belva-bench
exec build/release/apps/bench/belva-bench "$@"

#!/usr/bin/env bash
# Builds and runs the demo host application on the embedded help desk.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target belva-demo
exec build/release/apps/demo/belva-demo "$@"

#!/usr/bin/env bash
# Builds the demo host application on the embedded help desk and runs it: in a window where a
# display exists, otherwise as a tour of every screen that writes a picture per step to build/tour.
# Arguments go to the program instead (see `--help`).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target belva-demo
demo=build/release/apps/demo/belva-demo
if [ $# -gt 0 ]; then
  exec "$demo" "$@"
fi
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec "$demo" --window
fi
tour=build/tour
status=0
"$demo" --tour "$tour" || status=$?
echo "No display here, so the app was toured offscreen: its pictures are in $(pwd)/$tour (001-home.png, ...)."
exit "$status"

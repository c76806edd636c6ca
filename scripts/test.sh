#!/usr/bin/env bash
# Builds the test preset (AddressSanitizer + UBSan) and runs the whole suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset test
cmake --build --preset test
ctest --preset test

#!/usr/bin/env bash
# Sets up a fresh Debian machine and runs every test: dependencies, configure,
# build, then CTest. The sanitizer job with the fuzz targets is
# scripts/sanitize.sh; it joins this script once it has run clean on the
# whole of the current code.
# Usage: scripts/test.sh [build-dir]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}

bash "$root/scripts/install-deps.sh"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" -j "$(nproc)"
(cd "$build" && ctest --output-on-failure -j "$(nproc)")

#!/usr/bin/env bash
# Sets up a fresh Debian machine and runs every test: dependencies, configure,
# build, then CTest; then the sanitizer job (scripts/sanitize.sh): the same
# tests again under AddressSanitizer and UndefinedBehaviorSanitizer, and each
# fuzz target for a short run on its corpus. VELMORA_SKIP_SANITIZE=1 leaves
# the sanitizer job out.
# Usage: scripts/test.sh [build-dir]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}

bash "$root/scripts/install-deps.sh"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" -j "$(nproc)"
(cd "$build" && ctest --output-on-failure -j "$(nproc)")
if [ "${VELMORA_SKIP_SANITIZE:-0}" != 1 ]; then
  bash "$root/scripts/sanitize.sh" "$build-sanitize"
fi

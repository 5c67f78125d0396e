#!/usr/bin/env bash
# The sanitizer job: the library, the data tool, every test and the fuzz
# targets built with clang under AddressSanitizer and UndefinedBehaviorSanitizer
# (any report ends the program), then every test, the data file's generation
# and a short run of each fuzz target on its committed corpus.
# Usage: scripts/sanitize.sh [build-dir]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-sanitize}

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1:strict_string_checks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$root/scripts/lsan.supp:print_suppressions=0}

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
  -DVELMORA_SANITIZE=ON -DVELMORA_BUILD_FUZZ=ON -DVELMORA_BUILD_BENCH=OFF
cmake --build "$build" -j "$(nproc)"
cd "$build"
# The install check builds a consumer program, which has nothing to sanitize;
# the plain build runs it.
ctest --output-on-failure -j "$(nproc)" -E '^Install\.'


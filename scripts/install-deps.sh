#!/usr/bin/env bash
# Installs, from Debian's packages only, whatever the build and the tests need
# and the machine lacks. Safe to run again: packages already present are skipped.
set -euo pipefail

packages=(
  g++ cmake make pkg-config
  qt6-base-dev
  libxerces-c-dev
  libgdal-dev
  libsqlite3-dev
  libgtest-dev libgmock-dev
  libbenchmark-dev
  proj-bin proj-data libproj-dev
  geographiclib-tools
  # The sanitizer build and the fuzz targets (libFuzzer comes with clang's runtime).
  clang-14 libclang-rt-14-dev llvm-14
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all packages present"
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"

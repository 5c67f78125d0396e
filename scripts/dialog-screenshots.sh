#!/bin/bash
# Renders the dialogs on the shipped data file under a virtual X server into
# docs/*.png. Needs the Debian package xvfb and a build in build/ (or $1).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
cmake --build "$build" -j2 --target velmora-dialog-screenshots velmora_data
mkdir -p "$root/docs"
# The editor form and the pickers keep geometry in the settings: start from none.
config=$(mktemp -d)
trap 'rm -rf "$config"' EXIT
XDG_CONFIG_HOME=$config QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x1024x24" \
  "$build/apps/velmora-dialog-screenshots" "$build/data/velmora.xml" "$root/docs"

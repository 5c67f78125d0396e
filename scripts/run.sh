#!/usr/bin/env bash
# The main job on a fresh Debian machine: install the dependencies, build
# (Release), and convert the sample points with the velmora tool: WGS 84 to
# UTM zone 32N, and WGS 84 to ED50.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh   # uses sudo when not root
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release
# The tool and the data file only; scripts/test.sh builds everything.
cmake --build build -j"$(nproc)" --target velmora_cli velmora_data

export QT_QPA_PLATFORM=offscreen
points=data/examples/wgs84-points.txt
# The tool reads the data file the build made (build/data/velmora.xml).
echo "== WGS 84 longitude, latitude (EPSG:4326) to UTM zone 32N easting, northing (EPSG:32632)"
build/apps/velmora convert --from EPSG:4326 --to EPSG:32632 --verbose < "$points"
echo "== WGS 84 (EPSG:4326) to ED50 (EPSG:4230), longitude and latitude"
build/apps/velmora convert --from EPSG:4326 --to EPSG:4230 --verbose < "$points"

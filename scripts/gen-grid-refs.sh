#!/usr/bin/env bash
# Reference shifts for the grid readers, made with PROJ's hgridshift (cct) on
# the NTv2 grids of proj-data and on the nested test grid that
# tools/make-test-grids.py writes. Each line of tests/data/grid_<name>.txt is
#   lon lat  lon' lat'  lon'' lat''
# a point, PROJ's forward shift of it and PROJ's inverse shift of it, in
# degrees. The points are drawn at random (fixed seed) inside each grid's
# area, a little in from its edges, plus the nodes and cell middles named
# below for the nested grid.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
data=$root/tests/data
proj=${PROJ_DATA:-/usr/share/proj}

# name grid west east south north count seed
refs() {
  local name=$1 grid=$2 w=$3 e=$4 s=$5 n=$6 count=$7 seed=$8 points
  points=$(awk -v w="$w" -v e="$e" -v s="$s" -v n="$n" -v c="$count" -v seed="$seed" 'BEGIN {
    srand(seed)
    for (i = 0; i < c; ++i) printf "%.10f %.10f 0 0\n", w + rand() * (e - w), s + rand() * (n - s) }')
  {
    echo "# lon lat, forward, inverse: cct $(cct --version 2>&1 | head -1) +proj=hgridshift +grids=$(basename "$grid")"
    paste -d ' ' \
      <(echo "$points" | awk '{ print $1, $2 }') \
      <(echo "$points" | cct -d 12 +proj=hgridshift +grids="$grid" | awk '{ print $1, $2 }') \
      <(echo "$points" | cct -d 12 -I +proj=hgridshift +grids="$grid" | awk '{ print $1, $2 }')
    if [ -n "${9:-}" ]; then
      paste -d ' ' \
        <(echo "$9" | awk '{ print $1, $2 }') \
        <(echo "$9" | cct -d 12 +proj=hgridshift +grids="$grid" | awk '{ print $1, $2 }') \
        <(echo "$9" | cct -d 12 -I +proj=hgridshift +grids="$grid" | awk '{ print $1, $2 }')
    fi
  } > "$data/grid_$name.txt"
}

refs beta2007 "$proj/BETA2007.gsb" 5.6 15.6 47.1 55.2 100 1
refs chenyx06 "$proj/CHENYX06.gsb" 5.6 11.0 45.5 48.0 100 2
refs ntf_r93 "$proj/ntf_r93.gsb" -5.4 9.9 41.1 51.9 100 3
refs nzgd2k "$proj/nzgd2kgrid0005.gsb" 166.1 179.9 -47.9 -34.1 100 4
# The nested grid: random points over the parent (most fall in it alone),
# and points in the child and the grandchild, and in the second grid.
refs nested "$data/grids/nested.gsb" -9.9 13.9 40.1 43.9 60 5 "$(printf '%s\n' \
  '1.1 41.1 0 0' '1.9 41.9 0 0' '1.3 41.3 0 0' '1.45 41.45 0 0' '1.2 41.6 0 0' '-0.5 30.5 0 0' '-0.2 30.9 0 0')"

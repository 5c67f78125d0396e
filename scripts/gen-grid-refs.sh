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

# The points, PROJ's forward shift of them and its inverse, side by side.
table() {
  local ops=$1 points=$2
  paste -d ' ' \
    <(echo "$points" | awk '{ print $1, $2 }') \
    <(echo "$points" | cct -d 12 $ops | awk '{ print $1, $2 }') \
    <(echo "$points" | cct -d 12 -I $ops | awk '{ print $1, $2 }')
}

# name grid-or-pipeline west east south north count seed [points]: a grid
# file goes through hgridshift, a pipeline (starting with "+") as it stands.
refs() {
  local name=$1 grid=$2 w=$3 e=$4 s=$5 n=$6 count=$7 seed=$8 points ops shown
  if [ "${grid#+}" != "$grid" ]; then
    ops=$grid shown=${grid//$root\//}
  else
    ops="+proj=hgridshift +grids=$grid" shown="+proj=hgridshift +grids=$(basename "$grid")"
  fi
  points=$(awk -v w="$w" -v e="$e" -v s="$s" -v n="$n" -v c="$count" -v seed="$seed" 'BEGIN {
    srand(seed)
    for (i = 0; i < c; ++i) printf "%.10f %.10f 0 0\n", w + rand() * (e - w), s + rand() * (n - s) }')
  {
    echo "# lon lat, forward, inverse: cct $(cct --version 2>&1 | head -1) $shown"
    if [ "$count" -gt 0 ]; then
      table "$ops" "$points"
    fi
    if [ -n "${9:-}" ]; then
      table "$ops" "$9"
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

# The national grids of tools/make-test-grids.py. GR3D1: the geocentric
# translation of the GeoTIFF twin of the text grid, read at the NTF point
# (Clarke 1880 IGN) and applied exactly, to RGF93 (GRS80).
refs gr3d1 "+proj=pipeline +step +proj=cart +ellps=clrk80ign +step +proj=xyzgridshift \
+grids=$data/grids/gr3d/gr3d1_test.tif +grid_ref=input_crs +ellps=clrk80ign +step +inv +proj=cart +ellps=GRS80" \
  -0.95 2.95 45.05 47.95 100 6
# The Tokyo mesh's NTv2 twin, with the corners of first- and second-order
# cells and points on the east edges of third-order cells.
refs tokyo "$data/grids/tokyo/tky_test.gsb" 139.501 140.249 35.001 35.499 100 7 "$(printf '%s\n' \
  '140.0 35.3333333333333 0 0' '139.625 35.25 0 0' '139.6125 35.1 0 0' '139.9875 35.2 0 0' '139.5125 35.0041666667 0 0')"
# OSTN: the grid's affine field exactly, from ETRS89 on the National Grid's
# transverse Mercator (GRS80) to OSGB36 (Airy), at points drawn on the grid
# away from the node without data (18, 18 km).
tm="+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000"
ostn_points=$(awk 'BEGIN { srand(8); for (i = 0; i < 60; ++i)
  printf "%.4f %.4f 0 0\n", 400500 + rand() * 16000, 300500 + rand() * 16000 }' | cct -d 12 -I $tm +ellps=GRS80)
refs ostn "+proj=pipeline +step $tm +ellps=GRS80 +step +proj=affine +xoff=-455 +s11=1.001 +s12=0.0005 \
+yoff=-510 +s21=-0.0004 +s22=1.002 +step +inv $tm +ellps=airy" 0 0 0 0 0 8 "$ostn_points"

#!/usr/bin/env bash
# Reference geoid heights for the EGM96 model, made with PROJ's vgridshift
# (cct, bilinear) on proj-data's egm96_15.gtx, from which the build makes the
# raster the library reads. tests/data/geoid_egm96.txt has lines
#   kind lon lat N
# in degrees and metres: first 60 grid nodes (where the two agree to the
# centimetre the raster keeps), then 300 points at random over the world
# (fixed seed), where PROJ's bilinear value and the library's spline differ
# by what the test measures, then points within a quarter degree of the
# poles, where the library is bilinear too.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=$root/tests/data/geoid_egm96.txt
points=$(awk 'BEGIN {
  srand(7)
  for (i = 0; i < 60; ++i) printf "0 %.2f %.2f\n", int(rand() * 1440) * 0.25 - 180, int(rand() * 721) * 0.25 - 90
  for (i = 0; i < 300; ++i) printf "1 %.6f %.6f\n", rand() * 360 - 180, rand() * 170 - 85
  for (i = 0; i < 20; ++i) printf "2 %.6f %.6f\n", rand() * 360 - 180, (i % 2 ? 1 : -1) * (89.76 + rand() * 0.23)
}')
{
  echo "# kind (0 node, 1 between nodes, 2 near a pole) lon lat N: cct $(cct --version 2>&1 | head -1) +proj=vgridshift +grids=egm96_15.gtx +multiplier=1"
  paste -d ' ' <(echo "$points" | awk '{ print $1, $2, $3 }') \
    <(echo "$points" | awk '{ print $2, $3, 0, 0 }' | cct -d 6 +proj=vgridshift +grids=egm96_15.gtx +multiplier=1 |
      awk '{ print $3 }')
} > "$out"

# tests/data/geoid_egm96_alps.txt: the same for the Alps patch that
# tools/make-test-grids.py copies from the gtx into the NGS formats: 40 nodes
# and 200 points between them, at least a node inside the patch's edges.
out=$root/tests/data/geoid_egm96_alps.txt
points=$(awk 'BEGIN {
  srand(11)
  for (i = 0; i < 40; ++i) printf "0 %.2f %.2f\n", 5.25 + int(rand() * 27) * 0.25, 44.25 + int(rand() * 15) * 0.25
  for (i = 0; i < 200; ++i) printf "1 %.6f %.6f\n", 5.25 + rand() * 6.5, 44.25 + rand() * 3.5
}')
{
  echo "# kind (0 node, 1 between nodes) lon lat N: cct $(cct --version 2>&1 | head -1) +proj=vgridshift +grids=egm96_15.gtx +multiplier=1"
  paste -d ' ' <(echo "$points" | awk '{ print $1, $2, $3 }') \
    <(echo "$points" | awk '{ print $2, $3, 0, 0 }' | cct -d 6 +proj=vgridshift +grids=egm96_15.gtx +multiplier=1 |
      awk '{ print $3 }')
} > "$out"

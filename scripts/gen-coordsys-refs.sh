#!/usr/bin/env bash
# Reference points for projected systems on a prime meridian other than
# Greenwich: PROJ's cs2cs takes transverse Mercator coordinates on the Paris
# meridian (2 20 14.025 E; Clarke 1880 IGN) to Greenwich longitude and latitude.
# Output: tests/data/paris_tmerc.txt, lines "easting northing lon lat".
set -euo pipefail
out=$(cd "$(dirname "$0")/.." && pwd)/tests/data/paris_tmerc.txt
src="+proj=tmerc +lat_0=0 +lon_0=0 +k=0.9996 +x_0=500000 +y_0=0 +a=6378249.2 +b=6356515 +pm=paris +type=crs"
dst="+proj=longlat +a=6378249.2 +b=6356515 +pm=greenwich +type=crs"
{
  echo "# easting northing longitude latitude (Greenwich, degrees): cs2cs $src +to $dst"
  for e in 300000 420000 500000 580000 700000; do
    for n in 4700000 5100000 5500000; do
      echo "$e $n"
    done
  done | cs2cs -f %.12f $src +to $dst | paste -d' ' <(for e in 300000 420000 500000 580000 700000; do
      for n in 4700000 5100000 5500000; do echo "$e $n"; done; done) - | awk '{print $1, $2, $3, $4}'
} > "$out"
echo "wrote $out"

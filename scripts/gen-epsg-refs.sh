#!/usr/bin/env bash
# Reference points for the shipped data file, made with PROJ from the same
# registry: each line "code lon lat easting northing" gives a point of the
# system's own geographic base and PROJ's plane coordinates for it, for the
# transverse Mercator systems of the file (those that convert today).
#   32632 WGS 84 / UTM zone 32N          (base 4326)
#   27700 OSGB36 / British National Grid (base 4277)
#   31467 DHDN / 3-degree Gauss-Kruger 3 (base 4314; PROJ gives northing first)
# Points lie inside each system's area of use, which the file's envelopes keep.
#
# A second file checks a Molodensky-Badekas shift of the registry (EPSG:1066,
# Amersfoort to ETRS89 (2), coordinate frame rotations about a pivot) through
# PROJ's own molobadekas step: "lon lat lon' lat'" in degrees on the two
# ellipsoids (Bessel 1841, GRS 1980), heights 0 in and dropped out. The
# registry gives the rotations in microradians; PROJ takes arc-seconds.
set -euo pipefail
data=$(cd "$(dirname "$0")/.." && pwd)/tests/data

{
  echo "# code lon lat easting northing: cs2cs $(cs2cs 2>&1 | head -1)"
  run() { # code base lon lat order
    local out
    out=$(echo "$4 $3" | cs2cs -d 6 "EPSG:$2" "EPSG:$1")
    set -- "$1" "$2" "$3" "$4" "$5" $out
    if [ "$5" = ne ]; then echo "$1 $3 $4 $7 $6"; else echo "$1 $3 $4 $6 $7"; fi
  }
  for p in "6.5 0.5" "9 45" "11.9 83.5" "7.25 52.1" "10.75 36.8"; do run 32632 4326 $p en; done
  for p in "-1.5 52.5" "-6.2 58.3" "1.7 51.1" "-3.3 55.95" "-5.9 57.8"; do run 27700 4277 $p en; done
  for p in "9.2 48.1" "7.6 47.4" "10.4 54.9" "8.8 51.0" "9.0 53.5"; do run 31467 4314 $p ne; done
} > "$data/epsg_tmerc.txt"

{
  echo "# lon lat lon' lat': cct, Amersfoort to ETRS89 (2), EPSG:1066"
  arcsec() { awk -v u="$1" 'BEGIN { printf "%.12f", u * 0.206264806247096355 }'; }
  rx=$(arcsec 1.9848) ry=$(arcsec -1.7439) rz=$(arcsec 9.0587)
  for p in "4.0 52.0" "5.387 52.156" "6.9 53.4" "3.4 51.4" "5.9 50.8"; do
    echo "$p 0 0" | cct -d 10 +proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad \
      +step +proj=cart +ellps=bessel \
      +step +proj=molobadekas +convention=coordinate_frame +x=593.032 +y=26.0 +z=478.741 \
            +rx=$rx +ry=$ry +rz=$rz +s=4.0772 +px=3903453.148 +py=368135.313 +pz=5012970.306 \
      +step +inv +proj=cart +ellps=GRS80 \
      +step +proj=unitconvert +xy_in=rad +xy_out=deg |
      awk -v p="$p" '{ print p, $1, $2 }'
  done
} > "$data/epsg_badekas.txt"

#!/usr/bin/env bash
# Reference points for the parametric datum shifts, made with PROJ's cct.
#
# Helmert sets: the pipeline cart (source ellipsoid) -> helmert -> inverse
# cart (destination ellipsoid), run forward. Each line holds a source point
# and PROJ's destination point: "lon lat h lon' lat' h'" (degrees, metres).
# The same pairs check a shift's way back, read from right to left.
#   - three-parameter translations: ED50 to WGS 84 (EPSG:1133, -87 -98 -121)
#     and Tokyo to WGS 84 (EPSG:1230, -148 507 685);
#   - seven parameters, OSGB 1936 to WGS 84 (EPSG:1314, position vector):
#     once with PROJ's small-angle rotation matrix, once with +exact.
#
# Molodensky: +proj=molodensky (the standard, not the abridged formulas).
# The forward file takes source points with the published set; the back file
# takes destination points through the reversed definition (destination
# ellipsoid, da and df of the other sign, negated translations), which is the
# one-step formula the way back evaluates; PROJ's own inverse differs from it
# by second-order terms.
set -euo pipefail
data=$(cd "$(dirname "$0")/.." && pwd)/tests/data

# Ellipsoids by semi-major axis and inverse flattening, as PROJ defines them.
wgs84="+a=6378137 +rf=298.257223563"
intl="+a=6378388 +rf=297"
airy="+a=6377563.396 +rf=299.3249646"
bessel="+a=6377397.155 +rf=299.1528128"

# A grid of points over a region at three heights: lon0 lon1 dlon lat0 lat1 dlat.
grid() {
  awk -v l0="$1" -v l1="$2" -v dl="$3" -v p0="$4" -v p1="$5" -v dp="$6" 'BEGIN {
    split("0 350.5 2400", hs, " ")
    n = 0
    for (lon = l0; lon <= l1 + 1e-9; lon += dl)
      for (lat = p0; lat <= p1 + 1e-9; lat += dp) {
        n++
        printf "%.6f %.6f %s\n", lon, lat, hs[(n % 3) + 1]
      }
  }'
}

# Runs the points on stdin through a cct operation; writes "in out" lines.
pairs() {
  local input
  input=$(cat)
  paste -d' ' <(echo "$input") <(echo "$input" | cct -d 12 "$@" | awk '{print $1, $2, $3}')
}

helmert() {
  local header=$1 out=$2 from=$3 to=$4
  shift 4
  {
    echo "# $header"
    echo "# lon lat h (source) lon lat h (destination): cct cart $from | helmert $* | inv cart $to"
    pairs +proj=pipeline +step +proj=cart $from +step +proj=helmert "$@" +step +inv +proj=cart $to
  } > "$data/$out"
  echo "wrote $data/$out"
}

# da and df of a Molodensky set between two ellipsoids, as the formula takes them.
delta() {
  awk -v a0="$1" -v rf0="$2" -v a1="$3" -v rf1="$4" 'BEGIN { printf "+da=%.17g +df=%.17g", a1 - a0, 1 / rf1 - 1 / rf0 }'
}

molodensky() {
  local header=$1 out=$2 from=$3 deltas=$4
  shift 4
  {
    echo "# $header"
    echo "# lon lat h (input) lon lat h (result): cct molodensky $from $deltas $*"
    # shellcheck disable=SC2086
    pairs +proj=molodensky $from $deltas "$@"
  } > "$data/$out"
  echo "wrote $data/$out"
}

europe() { grid -10 30 8 36 70 6.8; }
britain() { grid -8 2 2 50 60 2; }
japan() { grid 128 146 4.5 30 45 5; }

europe | helmert "ED50 to WGS 84, three-parameter Helmert" helmert_ed50_wgs84.txt "$intl" "$wgs84" \
  +x=-87 +y=-98 +z=-121
japan | helmert "Tokyo to WGS 84, three-parameter Helmert" helmert_tokyo_wgs84.txt "$bessel" "$wgs84" \
  +x=-148 +y=507 +z=685
osgb="+x=446.448 +y=-125.157 +z=542.06 +rx=0.15 +ry=0.247 +rz=0.842 +s=-20.489 +convention=position_vector"
# shellcheck disable=SC2086
britain | helmert "OSGB 1936 to WGS 84, position vector, small-angle rotation" helmert_osgb36_wgs84_approx.txt \
  "$airy" "$wgs84" $osgb
# shellcheck disable=SC2086
britain | helmert "OSGB 1936 to WGS 84, position vector, exact rotation" helmert_osgb36_wgs84_exact.txt \
  "$airy" "$wgs84" $osgb +exact

# The back file's inputs are the forward file's results, so both cover the same ground.
ed50=$(delta 6378388 297 6378137 298.257223563)
ed50back=$(delta 6378137 298.257223563 6378388 297)
europe | molodensky "ED50 to WGS 84, Molodensky, forward" molodensky_ed50_wgs84_forward.txt "$intl" "$ed50" \
  +dx=-87 +dy=-98 +dz=-121
awk '!/^#/ {print $4, $5, $6}' "$data/molodensky_ed50_wgs84_forward.txt" |
  molodensky "ED50 to WGS 84, Molodensky, back: the reversed set from WGS 84" molodensky_ed50_wgs84_back.txt \
    "$wgs84" "$ed50back" +dx=87 +dy=98 +dz=121
tokyo=$(delta 6377397.155 299.1528128 6378137 298.257223563)
tokyoback=$(delta 6378137 298.257223563 6377397.155 299.1528128)
japan | molodensky "Tokyo to WGS 84, Molodensky, forward" molodensky_tokyo_wgs84_forward.txt "$bessel" "$tokyo" \
  +dx=-148 +dy=507 +dz=685
awk '!/^#/ {print $4, $5, $6}' "$data/molodensky_tokyo_wgs84_forward.txt" |
  molodensky "Tokyo to WGS 84, Molodensky, back: the reversed set from WGS 84" molodensky_tokyo_wgs84_back.txt \
    "$wgs84" "$tokyoback" +dx=148 +dy=-507 +dz=-685

#!/usr/bin/env bash
# Writes the reference vectors of the conic projections from PROJ's cct:
#
#   tests/data/conic_lcc.txt           +proj=lcc, two standard parallels
#   tests/data/conic_lcc_1sp.txt       +proj=lcc with lat_1 = lat_0 and k_0
#   tests/data/conic_lcc_raised.txt    +proj=lcc on a figure raised by h
#                                      (a + h, b + h), h = elevation + geoid
#   tests/data/conic_aea.txt           +proj=aea
#   tests/data/conic_eqdc.txt          +proj=eqdc
#
# Each file names its columns on a "# columns:" line: the figure (a, rf; rf 0
# for a sphere), the projection's parameters by name (degrees, metres), then
# lon lat x y. Each parameter set is a line of the tables below: northern and
# southern cones, equal parallels, a meridian near the antimeridian, on
# several figures. Points come from a fixed-seed Park-Miller generator in
# awk: longitudes up to 25 degrees from the central meridian (some to 60),
# latitudes from 10 degrees beyond the cone's far parallel to 84 degrees on
# its own side. The output is committed; run this again only to change it.
# Usage: scripts/gen-conic-refs.sh [out-dir]

# Points for one parameter set: seed cm side(1 north, -1 south) -> "lon lat" lines.
points() {
  awk -v seed="$1" -v cm="$2" -v side="$3" '
  function rnd() { seed = (seed * 16807) % 2147483647; return seed / 2147483647 }
  function put(dl, lat) { lon = cm + dl; if (lon > 180) lon -= 360; if (lon <= -180) lon += 360
                          printf "%.10f %.10f\n", lon, side * lat }
  BEGIN {
    for (i = 0; i < 60; i++) put((2 * rnd() - 1) * 25, -10 + 94 * rnd())
    for (i = 0; i < 10; i++) put((2 * rnd() - 1) * 60, 10 + 70 * rnd())
    put(0, 0); put(0, 45); put(3, 30); put(-3, 60); put(0, 84)
  }'
}

script=scripts/gen-conic-refs.sh
# shellcheck source=scripts/proj-refs-lib.sh
. "$(dirname "$0")/proj-refs-lib.sh"

two="latitude_of_origin central_meridian standard_parallel1 standard_parallel2 false_easting false_northing"
write conic_lcc.txt "$two" "+proj=lcc +lat_0=@0@ +lon_0=@1@ +lat_1=@2@ +lat_2=@3@ +x_0=@4@ +y_0=@5@" <<'SETS'
grs80 1 36.5 -120.5 38.4333333333 37.0666666667 2000000 500000
grs80 1 46.5 3 49 44 700000 6600000
clarke1866 1 40 -100 40 40 500000 0
wgs84 -1 -32 135 -28 -36 1000000 2000000
bessel1841 -1 -90 20 -40 -60 0 0
intl1924 1 90 4.3569397222 49.8333333333 51.1666666667 150000.013 5400088.438
wgs84 1 50 177 45 60 0 0
sphere 1 30 10 20 50 100000 200000
SETS

write conic_lcc_1sp.txt "latitude_of_origin central_meridian scale_factor false_easting false_northing" \
  "+proj=lcc +lat_0=@0@ +lat_1=@0@ +lon_0=@1@ +k_0=@2@ +x_0=@3@ +y_0=@4@" <<'SETS'
clarke1866 1 18 -77 1 250000 150000
clarke1880ign 1 46.8 2.3372291667 0.99987742 600000 2200000
grs80 -1 -30 25 0.9999 0 0
SETS

write conic_lcc_raised.txt "$two average_elevation average_geoid_height" \
  "+proj=lcc +lat_0=@0@ +lon_0=@1@ +lat_1=@2@ +lat_2=@3@ +x_0=@4@ +y_0=@5@ @raise@" <<'SETS'
grs80 1 41.5 -111.5 43 44.5 500000 0 1500 -20
clarke1866 -1 -35 -60 -30 -40 0 1000000 0 35
SETS

write conic_aea.txt "central_meridian latitude_of_origin standard_parallel1 standard_parallel2 false_easting false_northing" \
  "+proj=aea +lon_0=@0@ +lat_0=@1@ +lat_1=@2@ +lat_2=@3@ +x_0=@4@ +y_0=@5@" <<'SETS'
grs80 1 -96 23 29.5 45.5 0 0
grs80 -1 132 0 -18 -36 0 0
clarke1866 1 -154 50 55 65 0 0
wgs84 1 20 45 45 45 500000 0
sphere -1 -60 -40 -20 -50 0 0
SETS

write conic_eqdc.txt "central_meridian latitude_of_origin standard_parallel1 standard_parallel2 false_easting false_northing" \
  "+proj=eqdc +lon_0=@0@ +lat_0=@1@ +lat_1=@2@ +lat_2=@3@ +x_0=@4@ +y_0=@5@" <<'SETS'
wgs84 1 -96 23 29.5 45.5 0 0
bessel1841 -1 25 -30 -20 -40 100000 0
clarke1866 1 177 40 50 50 0 0
SETS

wc -l "$out"/conic_*.txt

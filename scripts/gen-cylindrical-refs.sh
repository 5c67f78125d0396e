#!/usr/bin/env bash
# Writes the reference vectors of the cylindrical and other standard
# projections from PROJ's cct:
#
#   tests/data/cyl_merc_a.txt    +proj=merc with k_0 (Mercator variant A)
#   tests/data/cyl_merc_b.txt    +proj=merc with lat_ts (variant B), and
#                                +proj=merc on the sphere of WGS 84's a
#                                (what EPSG:3857 computes)
#   tests/data/cyl_mill.txt      +proj=mill
#   tests/data/cyl_cea.txt       +proj=cea with lat_ts
#   tests/data/cyl_behrmann.txt  +proj=cea +lat_ts=30
#   tests/data/cyl_eqc.txt       +proj=eqc with lat_ts
#   tests/data/cyl_gall.txt      +proj=gall
#   tests/data/cyl_cass.txt      +proj=cass
#   tests/data/cyl_poly.txt      +proj=poly
#   tests/data/cyl_imw_p.txt     +proj=imw_p
#   tests/data/cyl_bonne.txt     +proj=bonne
#   tests/data/cyl_pconic.txt    +proj=pconic
#
# Columns as in scripts/proj-refs-lib.sh: the figure (a, rf; rf 0 for a
# sphere), the parameters by name, lon lat x y. The second field of a set
# is "reach:south:north": points lie up to `reach` degrees of longitude from
# the central meridian, at latitudes from south to north, drawn by a
# fixed-seed Park-Miller generator in awk, with the origin's meridian at
# both ends of the band and on the equator added. The output is committed;
# run this again only to change it.
# Usage: scripts/gen-cylindrical-refs.sh [out-dir]
points() {
  awk -v seed="$1" -v cm="$2" -v band="$3" '
  function rnd() { seed = (seed * 16807) % 2147483647; return seed / 2147483647 }
  function put(dl, lat) { lon = cm + dl; if (lon > 180) lon -= 360; if (lon <= -180) lon += 360
                          printf "%.10f %.10f\n", lon, lat }
  BEGIN {
    split(band, b, ":"); reach = b[1]; south = b[2]; north = b[3]
    for (i = 0; i < 80; i++) put((2 * rnd() - 1) * reach, south + (north - south) * rnd())
    put(0, south); put(reach, north); put(-reach, (south + north) / 2)
    if (south < 0 && north > 0) put(reach / 2, 0)
  }'
}

script=scripts/gen-cylindrical-refs.sh
# shellcheck source=scripts/proj-refs-lib.sh
. "$(dirname "$0")/proj-refs-lib.sh"

cyl="central_meridian latitude_of_origin false_easting false_northing"

write cyl_merc_a.txt "central_meridian latitude_of_origin scale_factor false_easting false_northing" \
  "+proj=merc +lon_0=@0@ +k_0=@2@ +x_0=@3@ +y_0=@4@" <<'SETS'
wgs84 180:-85:85 0 0 1 0 0
bessel1841 10:-10:5 110 0 0.997 3900000 900000
intl1924 30:-60:-20 -60 0 1 0 0
clarke1866 20:-5:30 179 0 0.9996 500000 10000000
sphere 180:-85:85 -30 0 1 100 200
SETS

write cyl_merc_b.txt "central_meridian latitude_of_origin scale_factor false_easting false_northing" \
  "+proj=merc +lon_0=@0@ +lat_ts=@1@ +x_0=@3@ +y_0=@4@" <<'SETS'
wgs84 180:-85:85 0 0 1 0 0
intl1924 30:-60:60 51 42 1 0 0
grs80 40:-80:-30 -100 -41 1 5000000 -2000000
webmerc 180:-85.06:85.06 0 0 1 0 0
SETS

write cyl_mill.txt "central_meridian spherical_radius false_easting false_northing" \
  "+proj=mill +lon_0=@0@ +x_0=@2@ +y_0=@3@" <<'SETS'
sphere 180:-89.9:89.9 0 6371000 0 0
sphere 100:-80:80 -96 6371000 1000 -500
SETS

write cyl_cea.txt "$cyl" "+proj=cea +lon_0=@0@ +lat_ts=@1@ +x_0=@2@ +y_0=@3@" <<'SETS'
wgs84 180:-89.9:89.9 0 0 0 0
grs80 60:-80:80 -100 45 1000000 -500000
sphere 180:-89:89 20 -30 0 0
SETS

write cyl_behrmann.txt "central_meridian false_easting false_northing" \
  "+proj=cea +lat_ts=30 +lon_0=@0@ +x_0=@1@ +y_0=@2@" <<'SETS'
wgs84 180:-89.9:89.9 0 0 0
sphere 180:-89.9:89.9 -160 500 500
SETS

write cyl_eqc.txt "$cyl" "+proj=eqc +lon_0=@0@ +lat_ts=@1@ +x_0=@2@ +y_0=@3@" <<'SETS'
wgs84 180:-90:90 0 0 0 0
sphere 180:-90:90 0 0 0 0
intl1924 60:-80:80 -30 60 100 200
SETS

write cyl_gall.txt "central_meridian false_easting false_northing" \
  "+proj=gall +lon_0=@0@ +x_0=@1@ +y_0=@2@" <<'SETS'
wgs84 180:-89:89 0 0 0
sphere 120:-89:89 150 1000 -1000
SETS

write cyl_cass.txt "$cyl" "+proj=cass +lon_0=@0@ +lat_0=@1@ +x_0=@2@ +y_0=@3@" <<'SETS'
clarke1858 3:8:13 -61.3333333333 10.4416666667 86501.46392052 65379.0134283
everest1830 5:0:8 102 2.1166666667 0 0
clarke1866 5:-50:-30 -60 -40 200000 300000
wgs84 5:-5:5 -177 0 0 0
bessel1841 4:45:55 13.6276 48.2052 10 20
SETS

write cyl_poly.txt "$cyl" "+proj=poly +lon_0=@0@ +lat_0=@1@ +x_0=@2@ +y_0=@3@" <<'SETS'
grs80 30:-35:5 -54 0 5000000 10000000
clarke1866 30:15:70 -96 30 0 0
wgs84 20:-80:80 120 -10 100 200
intl1924 10:-0.5:0.5 0 0 0 0
SETS

write cyl_imw_p.txt "central_meridian true_scale_longitude latitude_north latitude_south false_easting false_northing" \
  "+proj=imw_p +lon_0=@0@ +lon_1=@1@ +lat_2=@2@ +lat_1=@3@ +x_0=@4@ +y_0=@5@" <<'SETS'
intl1924 3:44:52 9 2 52 44 0 0
grs80 6:-22:-12 -45 4 -13 -21 500000 100000
wgs84 3:-2:6 30 2 4 0 0 0
SETS

write cyl_bonne.txt "$cyl" "+proj=bonne +lon_0=@0@ +lat_1=@1@ +x_0=@2@ +y_0=@3@" <<'SETS'
wgs84 90:-80:80 0 45 0 0
clarke1866 40:-80:60 -60 -30 1000 2000
bessel1841 30:-60:60 10 -20 0 0
sphere 90:-80:80 100 60 0 0
SETS

write cyl_pconic.txt "central_meridian standard_parallel1 standard_parallel2 false_easting false_northing" \
  "+proj=pconic +lon_0=@0@ +lat_1=@1@ +lat_2=@2@ +x_0=@3@ +y_0=@4@" <<'SETS'
wgs84 40:10:70 -96 29.5 45.5 0 0
sphere 40:-70:-10 20 -20 -50 1000 1000
SETS

wc -l "$out"/cyl_*.txt

#!/usr/bin/env python3
"""Writes the grid files the datum shift tests read, into tests/data/grids.

No package ships a nested NTv2 grid or a NADCON pair, so they are made here:

- nested.gsb: an NTv2 file of two top-level grids, a child inside the first
  and a grandchild inside the child. Each node holds a known surface; the
  child's and grandchild's surfaces differ from their parent's by a constant,
  so that which grid served a point shows in its shift.
- beta2007.las / beta2007.los: a NADCON pair holding, node for node, the
  values of PROJ's BETA2007.gsb (proj-data), so that the NADCON reader and
  PROJ's NTv2 reader can be compared on the very same values.
- ngs/: grids of the NGS formats (binary GEOID99 style, titled GEOID96 and
  VERTCON style) holding a biquadratic surface and a plane, which the
  readers' windows reproduce exactly, a .par list, and damaged files; and
  EGM96's undulations over the Alps (from proj-data's egm96_15.gtx) in the
  binary and the titled format, which PROJ's vgridshift reads as the gtx.
- os/: an Ordnance Survey shift-record grid of a known plane with one node
  without data, and one cut short.
- gr3d/: a French geocentric grid in IGN's GR3D1 text format and the very
  same float values as a GeoTIFF of PROJ's geodetic grid profile (through
  GDAL's Python bindings, Debian's python3-gdal), so that the text reader
  and PROJ's xyzgridshift can be compared; and damaged text files.
- tokyo/: a Japanese mesh file of shifts (mesh code, latitude and longitude
  shift in seconds) and an NTv2 grid of the same values, for PROJ's
  hgridshift; a mesh with missing corners.
- os/ostn_*.dat: shift records of an affine field on the National Grid
  (which bilinear interpolation reproduces exactly), with one node without
  data, and a field too steep for the inverse iteration.
- bad/: damaged and edge-case files: sub-file counts of 0, 200 and 201, a
  missing SUB_NAME, a file cut short, NADCON pairs whose headers differ, and
  a small NADCON pair of known values for the last-row and last-column reads.

The files are little-endian, as the readers take them. Run from anywhere,
with the system's Python (which has Debian's GDAL bindings):
    /usr/bin/python3 tools/make-test-grids.py [/usr/share/proj/BETA2007.gsb]
"""
import math
import os
import struct
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "tests", "data", "grids")


def record(key, value):
    """One 16-byte NTv2 record: an 8-character key and an 8-byte value."""
    k = key.ljust(8).encode("ascii")
    if isinstance(value, bytes):
        v = value.ljust(8)
    elif isinstance(value, str):
        v = value.ljust(8).encode("ascii")
    elif isinstance(value, int):
        v = struct.pack("<i", value) + b"\0" * 4
    else:
        v = struct.pack("<d", value)
    return k + v


def overview(count):
    return b"".join([
        record("NUM_OREC", 11), record("NUM_SREC", 11), record("NUM_FILE", count),
        record("GS_TYPE", "SECONDS"), record("VERSION", "NTv2.0"), record("SYSTEM_F", "TESTFROM"),
        record("SYSTEM_T", "TESTTO"), record("MAJOR_F", 6378137.0), record("MINOR_F", 6356752.314),
        record("MAJOR_T", 6378137.0), record("MINOR_T", 6356752.314)])


def subfile(name, parent, s, n, e, w, dlat, dlon, surface, key="SUB_NAME"):
    """A sub-file; bounds in seconds (longitudes positive west); nodes from
    south to north, each row from east to west, as the format lays them."""
    rows = int(round((n - s) / dlat)) + 1
    cols = int(round((w - e) / dlon)) + 1
    nodes = b""
    for r in range(rows):
        for c in range(cols):
            la, lo = surface(s + r * dlat, e + c * dlon)
            nodes += struct.pack("<ffff", la, lo, 0.0, 0.0)
    head = b"".join([
        record(key, name), record("PARENT", parent), record("CREATED", "20261125"),
        record("UPDATED", "20261125"), record("S_LAT", s), record("N_LAT", n), record("E_LONG", e),
        record("W_LONG", w), record("LAT_INC", dlat), record("LONG_INC", dlon), record("GS_COUNT", rows * cols)])
    return head + nodes


def end():
    return record("END", b"\0" * 8)


# Shifts in seconds: a gentle surface of the parent, and offsets that mark
# the finer grids. Positions in seconds, longitudes positive west.
def parent_surface(lat, lonw):
    return 1.0 + (lat - 144000.0) / 36000.0 + 0.5 * ((lat - 144000.0) / 36000.0) ** 2, \
        -2.0 + (lonw + 36000.0) / 36000.0


def child_surface(lat, lonw):
    la, lo = parent_surface(lat, lonw)
    return la + 0.25, lo - 0.25


def grandchild_surface(lat, lonw):
    la, lo = parent_surface(lat, lonw)
    return la + 0.5, lo - 0.5


def second_surface(lat, lonw):
    return 3.0, 4.0


def nested():
    # PARENT: 40 to 44 N, 10 W to 14 E (lonW -50400..36000), 0.5 degree.
    # CHILD: 41 to 42 N, 1 E to 2 E, 0.125 degree; GRANDCHILD: 41.25 to 41.5 N, 1.25 E to 1.5 E.
    # SECOND: 30 to 31 N, 0 to 1 W.
    return overview(4) + \
        subfile("PARENT", "NONE", 144000.0, 158400.0, -50400.0, 36000.0, 1800.0, 1800.0, parent_surface) + \
        subfile("CHILD", "PARENT", 147600.0, 151200.0, -7200.0, -3600.0, 450.0, 450.0, child_surface) + \
        subfile("GRANDCH", "CHILD", 148500.0, 149400.0, -5400.0, -4500.0, 225.0, 225.0, grandchild_surface) + \
        subfile("SECOND", "NONE", 108000.0, 111600.0, 0.0, 3600.0, 1800.0, 1800.0, second_surface) + end()


def tiny(name):
    return subfile(name, "NONE", 0.0, 3600.0, 0.0, 3600.0, 3600.0, 3600.0, lambda la, lo: (1.0, 1.0))


def read_ntv2(path):
    """The first sub-file of an NTv2 file: bounds, steps and nodes."""
    b = open(path, "rb").read()
    at = struct.unpack("<i", b[8:12])[0] * 16
    values = [struct.unpack("<d", b[at + 16 * k + 8: at + 16 * k + 16])[0] for k in range(4, 10)]
    count = struct.unpack("<i", b[at + 168: at + 172])[0]
    nodes = [struct.unpack("<ffff", b[at + 176 + 16 * i: at + 192 + 16 * i]) for i in range(count)]
    return values, nodes


def nadcon_pair(values, nodes, ident=b"NADCON pair from an NTv2 grid"):
    """A las and a los file of the nodes of one NTv2 sub-file: NADCON rows run
    west to east, so each NTv2 row (east to west) is reversed."""
    s, n, e, w, dlat, dlon = values
    rows = int(round((n - s) / dlat)) + 1
    cols = int(round((w - e) / dlon)) + 1
    header = ident.ljust(56, b" ")[:56] + b"NADGRD  " + struct.pack("<iii", cols, rows, 1) + \
        struct.pack("<fffff", -w / 3600.0, dlon / 3600.0, s / 3600.0, dlat / 3600.0, 0.0)
    row_size = cols * 4 + 4
    las = header.ljust(row_size, b"\0")
    los = header.ljust(row_size, b"\0")
    for r in range(rows):
        row = nodes[r * cols:(r + 1) * cols][::-1]
        las += b"\0" * 4 + b"".join(struct.pack("<f", node[0]) for node in row)
        los += b"\0" * 4 + b"".join(struct.pack("<f", node[1]) for node in row)
    return las, los


# NGS geoid grids ------------------------------------------------------------
# A biquadratic surface in node units x, y from the south-west corner of the
# first binary grid, which the 3 by 3 quadratic window reproduces exactly.
NGS_WEST, NGS_SOUTH, NGS_STEP = 250.0, 30.0, 0.25


def ngs_surface(lon, lat):
    x, y = (lon - NGS_WEST) / NGS_STEP, (lat - NGS_SOUTH) / NGS_STEP
    return -20.0 + 0.5 * x + 0.25 * y + 0.01 * x * x - 0.02 * y * y + 0.003 * x * y


def ngs_binary(south, west, rows, cols, surface):
    """GEOID99-style: 44-byte header, then rows of floats from the south."""
    head = struct.pack("<ddddiii", south, west, NGS_STEP, NGS_STEP, rows, cols, 1)
    body = b"".join(struct.pack("<f", surface(west + c * NGS_STEP, south + r * NGS_STEP))
                    for r in range(rows) for c in range(cols))
    return head + body


def ngs_titled(ident, south, west, rows, cols, surface):
    """GEOID96- and VERTCON-style: a header record, then rows behind a lead word."""
    head = b"Test surface".ljust(56, b" ") + ident.ljust(8, b" ") + struct.pack("<iii", cols, rows, 1) + \
        struct.pack("<fffff", west, NGS_STEP, south, NGS_STEP, 0.0)
    record = (cols + 1) * 4
    data = head.ljust(record, b"\0")
    for r in range(rows):
        data += b"\0" * 4 + b"".join(struct.pack("<f", surface(west + c * NGS_STEP, south + r * NGS_STEP))
                                     for c in range(cols))
    return data


def vertcon_plane(lon, lat):
    """Millimetres of NAVD88 over NGVD29."""
    return 100.0 + 3.0 * (lon + 110.0) / NGS_STEP + 5.0 * (lat - NGS_SOUTH) / NGS_STEP


def ngs_grids():
    # Two binary files side by side (250 to 252 E and 252 to 254 E), listed by a .par file and found in a folder.
    write("ngs/west.bin", ngs_binary(NGS_SOUTH, 250.0, 9, 9, ngs_surface))
    write("ngs/east.bin", ngs_binary(NGS_SOUTH, 252.0, 9, 9, ngs_surface))
    write("ngs/list.par", b"* two test grids\nwest part   west\neast part   east\nx\n")
    # Titled (a record must hold the 96 bytes of the header: 23 columns or
    # more): a GEOID96 grid of the same surface, a VERTCON grid of a plane
    # (negative longitudes, as VERTCON counts them), and two damaged ones.
    write("ngs/titled/g96.geo", ngs_titled(b"GEOGRD96", NGS_SOUTH, 250.0, 9, 25, ngs_surface))
    write("ngs/vertcon/plane.94", ngs_titled(b"vertc2.0", NGS_SOUTH, -110.0, 9, 25, vertcon_plane))
    good = ngs_titled(b"GEOGRD96", NGS_SOUTH, 250.0, 9, 25, ngs_surface)
    write("ngs/short/short.geo", good[:-4])
    write("ngs/other/other.geo", good[:56] + b"NOTAGRID" + good[64:])


def os_records():
    """A 10 by 10 km grid of Ordnance Survey shift records from E 400 km,
    N 300 km on the National Grid: a geoid height of the plane
    50 + E' / 1000 + N' / 500 metres (E', N' metres from the grid's corner),
    shifts of 100 and -80 m, and no data at the node of (405, 305) km."""
    columns, rows, first_col, first_row = 10, 10, 400.0, 300.0
    data = struct.pack("<hdddd", 0, columns, rows, first_col, first_row)
    for j in range(rows + 1):
        for i in range(columns + 1):
            e, n = 1000.0 * i, 1000.0 * j
            flag = 0 if (i, j) == (5, 5) else 1
            data += struct.pack("<dddh", 100.0, -80.0, 50.0 + e / 1000.0 + n / 500.0, flag)
    write("os/osgm_test.dat", data)
    write("os/short.dat", data[:200])


EGM96_GTX = "/usr/share/proj/egm96_15.gtx"
EGM96_WEST, EGM96_SOUTH, EGM96_COLS, EGM96_ROWS = 5.0, 44.0, 29, 17


def egm96_patch():
    """EGM96 undulations of proj-data's egm96_15.gtx (a big-endian header of
    four doubles and two ints, then 32-bit floats by rows from the south) over
    the Alps, 5 to 12 E and 44 to 48 N, as a binary and as a titled NGS grid,
    so that the NGS readers meet real values that PROJ reads too."""
    with open(EGM96_GTX, "rb") as f:
        data = f.read()
    south, west, dlat, dlon, rows, cols = struct.unpack(">ddddii", data[:40])
    values = {}
    for r in range(EGM96_ROWS):
        for c in range(EGM96_COLS):
            lat, lon = EGM96_SOUTH + r * NGS_STEP, EGM96_WEST + c * NGS_STEP
            i = round((lat - south) / dlat) * cols + round((lon - west) / dlon)
            values[(round(lon, 2), round(lat, 2))] = struct.unpack(">f", data[40 + 4 * i:44 + 4 * i])[0]

    def surface(lon, lat):
        return values[(round(lon, 2), round(lat, 2))]
    write("ngs/egm96/alps.bin", ngs_binary(EGM96_SOUTH, EGM96_WEST, EGM96_ROWS, EGM96_COLS, surface))
    write("ngs/egm96titled/alps.geo", ngs_titled(b"GEOGRD96", EGM96_SOUTH, EGM96_WEST, EGM96_ROWS, EGM96_COLS,
                                                 surface))


def f32(x):
    """x as the 32-bit float that a GeoTIFF or NTv2 node keeps."""
    return struct.unpack("<f", struct.pack("<f", x))[0]


# The GR3D1 grid: 1 W to 3 E, 45 N to 48 N, 0.1 degree, translations in
# metres near those of NTF to RGF93, varying smoothly (not bilinearly).
GR3D = (-1.0, 3.0, 45.0, 48.0, 0.1, 0.1)


def gr3d_field(lon, lat):
    return (f32(-168.0 + 1.5 * math.sin(lon) + 0.3 * (lat - 45.0) ** 2),
            f32(-60.0 + 0.8 * math.cos(lat) - 0.2 * lon * (lat - 45.0)),
            f32(320.0 + 2.0 * math.sin(lat + lon)))


def gr3d_text(west, east, south, north, dlon, dlat, field, extra_header=True):
    cols = int(round((east - west) / dlon)) + 1
    rows = int(round((north - south) / dlat)) + 1
    out = [" GR3D  002024 024 20370201",
           " GR3D1 %10.4f %9.4f %9.4f %9.4f %9.4f %9.4f" % (west, east, south, north, dlon, dlat)]
    if extra_header:
        out += [" GR3D2 INTERPOLATION BILINEAIRE", " GR3D3 PREC CM 01:5 02:10 03:20 04:50 99>100"]
    # Longitude by longitude, latitude running fastest, as IGN lays them out.
    for i in range(cols):
        for j in range(rows):
            lon, lat = west + i * dlon, south + j * dlat
            tx, ty, tz = field(lon, lat)
            out.append("00002 %14.9f %14.9f %.9g %.9g %.9g  99  -0158" % (lon, lat, tx, ty, tz))
    return "\n".join(out) + "\n"


def gr3d_geotiff(path, west, east, south, north, dlon, dlat, field):
    from osgeo import gdal, osr
    cols = int(round((east - west) / dlon)) + 1
    rows = int(round((north - south) / dlat)) + 1
    ds = gdal.GetDriverByName("GTiff").Create(path, cols, rows, 3, gdal.GDT_Float32)
    ds.SetMetadataItem("AREA_OR_POINT", "Point")
    ds.SetMetadataItem("TYPE", "GEOCENTRIC_TRANSLATION")
    ds.SetGeoTransform([west - dlon / 2, dlon, 0, north + dlat / 2, 0, -dlat])
    srs = osr.SpatialReference()
    srs.ImportFromEPSG(4275)  # NTF: the grid is read at the source point
    ds.SetProjection(srs.ExportToWkt())
    for band, name in enumerate(("x_translation", "y_translation", "z_translation"), start=1):
        b = ds.GetRasterBand(band)
        b.SetDescription(name)
        b.SetUnitType("metre")
        values = b""
        for r in range(rows):  # north first
            for c in range(cols):
                values += struct.pack("<f", field(west + c * dlon, north - r * dlat)[band - 1])
        b.WriteRaster(0, 0, cols, rows, values)
    ds = None


def gr3d_grids():
    text = gr3d_text(*GR3D, gr3d_field)
    write("gr3d/gr3d1_test.txt", text.encode("ascii"))
    os.makedirs(os.path.join(OUT, "gr3d"), exist_ok=True)
    gr3d_geotiff(os.path.join(OUT, "gr3d", "gr3d1_test.tif"), *GR3D, gr3d_field)
    small = gr3d_text(0.0, 1.0, 45.0, 46.0, 0.5, 0.5, lambda lon, lat: (-168.0, -60.0, 320.0), False)
    lines = small.splitlines(True)
    write("gr3d/no_header.txt", "".join(lines[:1] + lines[2:]).encode("ascii"))
    write("gr3d/bad_header.txt", "".join(lines[:1] + [" GR3D1 0.0 1.0 45.0 46.0 0.5\n"] + lines[2:]).encode("ascii"))
    write("gr3d/huge.txt", "".join(lines[:1] + [" GR3D1 -180 180 -90 90 1e-5 1e-5\n"] + lines[2:]).encode("ascii"))
    write("gr3d/bad_line.txt", "".join(lines[:4] + ["00002 0.5 45.0 -168.0 -60.0\n"] + lines[5:]).encode("ascii"))
    write("gr3d/long.txt", (small + lines[-1]).encode("ascii"))
    write("gr3d/short.txt", "".join(lines[:-1]).encode("ascii"))


# The mesh: 35 N to 35.5 N, 139.5 E to 140.25 E, third-order corners 30" by
# 45", across a first-order boundary in each direction (35 20' N, 140 E).
TOKYO = (35.0, 60, 139.5, 60)


def tokyo_field(lat, lon):
    """Shifts in seconds, latitude and longitude (east)."""
    return (f32(11.6 + 0.4 * math.sin(3.0 * lon) + 0.3 * (lat - 35.0) ** 2),
            f32(-11.8 + 0.5 * math.cos(4.0 * lat) - 0.2 * (lon - 139.5) * (lat - 35.0)))


def mesh_code(i, j):
    """The code of the corner i third-order cells north of 0 N and j east of 100 E."""
    return int("%02d%02d%d%d%d%d" % (i // 80, j // 80, i % 80 // 10, j % 80 // 10, i % 10, j % 10))


def mesh_file(south, rows, west, cols, field, skip=()):
    i0, j0 = int(round(south * 120)), int(round((west - 100.0) * 80))
    out = ["JGD2000 TKY2JGD test mesh", "MeshCode   dB(sec)   dL(sec)"]
    for i in range(i0, i0 + rows + 1):
        for j in range(j0, j0 + cols + 1):
            if (i - i0, j - j0) in skip:
                continue
            dlat, dlon = field(i / 120.0, 100.0 + j / 80.0)
            out.append("%d %.9g %.9g" % (mesh_code(i, j), dlat, dlon))
    return ("\n".join(out) + "\n").encode("ascii")


def tokyo_grids():
    south, rows, west, cols = TOKYO
    write("tokyo/tky_test.par", mesh_file(south, rows, west, cols, tokyo_field))
    # The same nodes as NTv2: seconds, longitudes positive west.
    s, n = south * 3600.0, (south + rows / 120.0) * 3600.0
    e, w = -(west + cols / 80.0) * 3600.0, -west * 3600.0

    def surface(lat, lonw):
        dlat, dlon = tokyo_field(lat / 3600.0, -lonw / 3600.0)
        return dlat, -dlon
    write("tokyo/tky_test.gsb", overview(1) + subfile("TOKYO", "NONE", s, n, e, w, 30.0, 45.0, surface) + end())
    # Two by two cells from 35 N, 139.5 E without the corner (1, 1) in the middle.
    write("tokyo/holes.par", mesh_file(south, 2, west, 2, tokyo_field, skip={(1, 1)}))
    # A longitude shift of (lon - 139.5125 E) itself: the back iteration
    # swings between the target and 139.5125 E for ever.
    write("tokyo/steep.par", mesh_file(south, 2, west, 2, lambda la, lo: (0.0, (lo - 139.5125) * 3600.0)))


# OSTN: 20 by 20 km from E 400 km, N 300 km. The field, metres:
# dE = 95 + 0.001 (E - 400000) + 0.0005 (N - 300000),
# dN = -70 - 0.0004 (E - 400000) + 0.002 (N - 300000).
OSTN_FIELD = (95.0, 0.001, 0.0005, -70.0, -0.0004, 0.002)


def ostn_records(columns, rows, first_col, first_row, shift, holes=()):
    data = struct.pack("<hdddd", 0, columns, rows, first_col, first_row)
    for j in range(rows + 1):
        for i in range(columns + 1):
            de, dn = shift(1000.0 * i, 1000.0 * j)
            data += struct.pack("<dddh", de, dn, 0.0, 0 if (i, j) in holes else 1)
    return data


def ostn_grids():
    a, b, c, d, e, f = OSTN_FIELD
    write("os/ostn_test.dat", ostn_records(20, 20, 400.0, 300.0,
                                          lambda x, y: (a + b * x + c * y, d + e * x + f * y), holes={(18, 18)}))
    # dE = E - 402000: the inverse swings between two points for ever.
    write("os/ostn_steep.dat", ostn_records(4, 4, 400.0, 300.0, lambda x, y: (x - 2000.0, 0.0)))


def write(name, data):
    path = os.path.join(OUT, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(data)


def main():
    beta = sys.argv[1] if len(sys.argv) > 1 else "/usr/share/proj/BETA2007.gsb"
    write("nested.gsb", nested())
    las, los = nadcon_pair(*read_ntv2(beta))
    write("beta2007.las", las)
    write("beta2007.los", los)

    write("bad/count0.gsb", overview(0) + tiny("ONE") + end())
    write("bad/count201.gsb", overview(201) + tiny("ONE") + end())
    write("bad/count200.gsb", overview(200) + b"".join(tiny("G%d" % i) for i in range(200)) + end())
    write("bad/nosubname.gsb", overview(1) +
          subfile("ONE", "NONE", 0.0, 3600.0, 0.0, 3600.0, 3600.0, 3600.0, lambda la, lo: (1.0, 1.0), key="SUBNAME"))
    whole = overview(1) + tiny("ONE") + end()
    write("bad/short.gsb", whole[:11 * 16 + 5 * 16])
    write("bad/header.gsb", whole[:20])
    # A 24 by 3 NADCON grid from 0 E, 0 N, one degree apart (a row must hold
    # the 96 bytes of the header), of known values: latitude shift 10 c + r
    # seconds, longitude shift 20 + c seconds (west).
    columns = 24
    values = (0.0, 7200.0, -3600.0 * (columns - 1), 0.0, 3600.0, 3600.0)
    nodes = [(10.0 * c + r, 20.0 + c, 0.0, 0.0) for r in range(3) for c in reversed(range(columns))]
    las, los = nadcon_pair(values, nodes, b"small")
    write("bad/small.las", las)
    write("bad/small.los", los)
    write("bad/other.los", nadcon_pair(values, nodes, b"Small")[1])
    write("bad/short.los", los[:50])
    # A longitude shift of lon - 1 degree: the back iteration swings between
    # two points for ever and never settles. A latitude shift of 2 (lat - 0.5)
    # degrees: away from 0.5 N its swings grow until they leave the grid.
    steep = [(7200.0 * (r - 0.5), -(c - 1.0) * 3600.0, 0.0, 0.0) for r in range(3) for c in reversed(range(columns))]
    las, los = nadcon_pair(values, steep, b"steep")
    write("bad/steep.las", las)
    write("bad/steep.los", los)
    ngs_grids()
    egm96_patch()
    os_records()
    gr3d_grids()
    tokyo_grids()
    ostn_grids()


if __name__ == "__main__":
    main()

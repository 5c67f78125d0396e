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
- bad/: damaged and edge-case files: sub-file counts of 0, 200 and 201, a
  missing SUB_NAME, a file cut short, NADCON pairs whose headers differ, and
  a small NADCON pair of known values for the last-row and last-column reads.

The files are little-endian, as the readers take them. Run from anywhere:
    tools/make-test-grids.py [/usr/share/proj/BETA2007.gsb]
"""
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


if __name__ == "__main__":
    main()

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


if __name__ == "__main__":
    main()

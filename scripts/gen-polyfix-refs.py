#!/usr/bin/env python3
# Reference for the older second-order fit: five passes of one-column least
# squares (coordinate descent) over the columns 1, x, y, xy, x², y², run
# independently here in plain Python on a 5 by 5 grid. Five passes do not
# reach the least-squares solution when columns are correlated (1 with x²
# and y²), so the expected coefficients are those of the five passes.
# Writes tests/data/polyfix_second_order.txt: per target (x then y) the six
# generating coefficients and the six coefficients after five passes.
import os
import sys

GRID = [-200.0, -100.0, 0.0, 100.0, 200.0]
TRUE_X = [5000.0, 1.2, -0.7, 3e-4, 2e-4, -1e-4]
TRUE_Y = [-3000.0, 0.4, 0.9, -2e-4, 1e-4, 3e-4]
PASSES = 5


def basis(x, y):
    return [1.0, x, y, x * y, x * x, y * y]


def five_passes(points, coefficients):
    rows = [basis(x, y) for x, y in points]
    target = [sum(b * c for b, c in zip(row, coefficients)) for row in rows]
    fitted = [0.0] * 6
    residual = [-t for t in target]  # model minus target
    for _ in range(PASSES):
        for k in range(6):
            column = [row[k] for row in rows]
            q = sum(a * r for a, r in zip(column, residual)) / sum(a * a for a in column)
            fitted[k] -= q
            residual = [r - a * q for r, a in zip(residual, column)]
    return fitted


def main():
    points = [(x, y) for x in GRID for y in GRID]
    default = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data",
                           "polyfix_second_order.txt")
    out = open(sys.argv[1] if len(sys.argv) > 1 else default, "w")
    out.write("# grid %s squared; per line: six generating coefficients, six after %d passes\n" % (GRID, PASSES))
    for true in (TRUE_X, TRUE_Y):
        fitted = five_passes(points, true)
        out.write(" ".join("%.17g" % v for v in true + fitted) + "\n")


main()

# Sourced by the scripts/gen-*-refs.sh that run PROJ's cct: the output
# folder (the script's first argument, else tests/data), a work folder
# removed on exit, and the figures the vectors are written on.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=${1:-$root/tests/data}
mkdir -p "$out"
command -v cct > /dev/null || { echo "missing cct (proj-bin)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Figures: name a rf (rf 0: sphere).
declare -A A RF
A[wgs84]=6378137;          RF[wgs84]=298.257223563
A[grs80]=6378137;          RF[grs80]=298.257222101
A[clarke1866]=6378206.4;   RF[clarke1866]=294.978698213898
A[intl1924]=6378388;       RF[intl1924]=297
A[bessel1841]=6377397.155; RF[bessel1841]=299.1528128
A[clarke1880ign]=6378249.2; RF[clarke1880ign]=293.466021293627
A[krassowsky]=6378245;     RF[krassowsky]=298.3
A[clarke1858]=6378293.645; RF[clarke1858]=294.26067636926
A[everest1830]=6377276.345; RF[everest1830]=300.8017
A[everest1967]=6377298.556; RF[everest1967]=300.8017
A[grs67]=6378160;          RF[grs67]=298.247167427
A[sphere]=6371000;         RF[sphere]=0
A[webmerc]=6378137;        RF[webmerc]=0

# PROJ's options for a figure.
figure_args() {
  local a=${A[$1]} rf=${RF[$1]}
  if [ "$rf" = 0 ]; then echo "+R=$a"; else echo "+a=$a +rf=$rf"; fi
}

#!/usr/bin/env bash
# Draws docs/complex-NAME.png for each elementary complex function of one argument: the function over
# a square around 0 in colours of its domain, and beside it the error of the single-precision HA entry
# in ulp, against the double-precision one (whose own error is below 1e-8 of that unit).
#
#   scripts/complex_plots.sh [PROGRAM]    the pexquo program, build/release/bin/pexquo by default
set -euo pipefail
cd "$(dirname "$0")/.."
pexquo=$(realpath "${1:-build/release/bin/pexquo}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

readonly points=200 side=4  # points along an edge of the square from -side to side

# Points are rounded to single precision once, so that both precisions see the same arguments.
awk -v n=$points -v a=$side 'BEGIN {
  for (y = 0; y < n; ++y) for (x = 0; x < n; ++x)
    printf "%.17g %.17g\n", a * ((2 * x + 1) / n - 1), a * ((2 * y + 1) / n - 1)
}' | "$pexquo" eval add --type c --b 0,0 -o "$work/grid.npy"
"$pexquo" eval add "$work/grid.npy" --type z --b 0,0 -o "$work/grid.txt"

# Columns: x, y, real and imaginary part in double precision, then in single.
error_of_worse_part='
function unit(x, p) {  # the ulp of x in single precision
  if (x < 0) x = -x
  if (x < 2 ^ -126) return 2 ^ -149
  p = 2 ^ int(log(x) / log(2))
  while (p > x) p /= 2
  while (2 * p <= x) p *= 2
  return p * 2 ^ -23
}
function error(exact, got, e) { e = (got - exact) / unit(exact); return e < 0 ? -e : e }
{
  re = error($3, $5); im = error($4, $6)
  print $1, $2, $3, $4, (re > im ? re : im)
}'

for name in exp ln log10 sqrt cosh sinh tanh cos sin tan acosh asinh atanh acos asin atan; do
  "$pexquo" eval $name "$work/grid.npy" --type z -o "$work/double.txt"
  "$pexquo" eval $name "$work/grid.npy" --type c -o "$work/single.npy"
  # All digits: the shortest text of a single-precision number is not its value.
  "$pexquo" eval sub "$work/single.npy" --type z --b 0,0 -o "$work/single.txt"
  paste "$work/grid.txt" "$work/double.txt" "$work/single.txt" |
    awk "$error_of_worse_part" > "$work/points.txt"
  largest=$(awk '$5 > m { m = $5 } END { printf "%.4f", m }' "$work/points.txt")
  gnuplot << PLOT
set terminal png truecolor size 1000,460 font 'DejaVuSans,10' noenhanced
set output 'docs/complex-$name.png'
set multiplot
set size ratio -1
set xrange [-$side:$side]
set yrange [-$side:$side]
set tics 2 out nomirror
unset key
mod(x, y) = sqrt(x * x + y * y)
hue(x, y) = (atan2(y, x) / (2 * pi)) + (y < 0)
light(m) = atan(m) * 2 / pi              # 0 black, 1 white
contour(m) = 0.8 + 0.2 * (log(m) / log(2) - floor(log(m) / log(2)))
bright(m) = contour(m) * (light(m) < 0.5 ? 2 * light(m) : 1)
pure(m) = light(m) < 0.5 ? 1 : 2 - 2 * light(m)
colour(x, y) = hsv2rgb(hue(x, y), pure(mod(x, y)), bright(mod(x, y)))
set lmargin at screen 0.04; set rmargin at screen 0.44  # two pixels for each point
set bmargin at screen 28 / 460.0; set tmargin at screen 428 / 460.0
set title '$name'
channel(c, shift) = (int(c) / shift % 256) / 10 * 10 + 5  # few shades: small files
plot '$work/points.txt' using 1:2:(c = colour(\$3, \$4), channel(c, 65536)):(channel(c, 256)): \
  (channel(c, 1)) with rgbimage
set lmargin at screen 0.50; set rmargin at screen 0.90
set title 'error in single precision HA, ulp; largest $largest'
set palette maxcolors 5 defined (0 'white', 0.5 'skyblue', 1 'navy')
set cbrange [0:0.5]
set cbtics 0.1
plot '$work/points.txt' using 1:2:5 with image
PLOT
  echo "docs/complex-$name.png: largest error $largest ulp"
done

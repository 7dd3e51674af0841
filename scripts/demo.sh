#!/usr/bin/env bash
# Sets up a fresh Debian 12 as far as needed, builds, and shows the library at work on real data.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh
mkdir -p build
echo "Building; the first time takes some minutes ..."
if ! { cmake --preset release && cmake --build --preset release --target pexquo_program michelson european_call; } \
    > build/demo.log 2>&1; then
  tail -n 30 build/demo.log >&2
  exit 1
fi
bin=build/release/bin
data=examples/data/michelson_1879.txt
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

printf '\n== The vector levels of this machine (pexquo list levels)\n'
"$bin/pexquo" list levels

printf '\n== The speed of light, measured 100 times in 1879: km/s and its logarithm\n'
"$bin/pexquo" eval add --b 299000 "$data" -o "$work/speeds.txt"
"$bin/pexquo" eval ln --tier ha "$work/speeds.txt" -o "$work/ln.txt"
paste "$work/speeds.txt" "$work/ln.txt" | head -n 3
echo "... 97 more"
same=()
for level in $("$bin/pexquo" list levels | awk '/ yes/ {print $1}'); do
  "$bin/pexquo" eval ln --tier ha --level "$level" "$work/speeds.txt" -o "$work/ln.$level.txt"
  cmp "$work/ln.txt" "$work/ln.$level.txt"
  same+=("$level")
done
echo "Every level gives the same bytes: ${same[*]}"

printf '\n== How far may the mean be off? Resampling with three generators\n'
"$bin/michelson" "$data"

printf '\n== A European call by Monte Carlo, normal variates by inversion, in two threads\n'
"$bin/european_call"

printf '\n== Ten normal numbers, the stream saved after five (pexquo draw gaussian)\n'
"$bin/pexquo" draw gaussian --generator mt19937 --seed 7 --count 10 -o "$work/ten.txt"
"$bin/pexquo" draw gaussian --generator mt19937 --seed 7 --count 5 --save "$work/stream" -o "$work/five.txt"
"$bin/pexquo" draw gaussian --load "$work/stream" --count 5 >> "$work/five.txt"
cmp "$work/ten.txt" "$work/five.txt"
printf '%-24s%s\n' "drawn at once" "five, saved, loaded, five more"
paste "$work/ten.txt" "$work/five.txt" | expand -t 24

printf '\n== What an element error looks like (pexquo eval ln on 299850, 0, -299850)\n'
printf '299850\n0\n-299850\n' > "$work/odd.txt"
status=0
(cd "$work" && "$OLDPWD/$bin/pexquo" eval ln odd.txt 2>&1) || status=$?
echo "Exit status $status: there were special elements, and the results are written."
((status == 1))

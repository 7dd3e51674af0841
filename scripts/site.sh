#!/usr/bin/env bash
# Builds the documentation site into site/_build/html; with --pictures also pictures of some pages, as
# wide as a desk's screen and as a phone's, into site/_build/pictures.
set -euo pipefail
cd "$(dirname "$0")/.."
packages=(doxygen python3-sphinx python3-myst-parser python3-breathe furo python3-sphinx-copybutton)
[[ ${1:-} == --pictures ]] && packages+=(chromium)
. scripts/setup.sh
install_packages "${packages[@]}"

program=${PEXQUO_PROGRAM:-build/release/bin/pexquo}
if [[ ! -x $program ]]; then
  echo "$program is missing: build the project first, or name the program in PEXQUO_PROGRAM" >&2
  exit 1
fi
build=site/_build
mkdir -p "$build"
for command in "" list eval draw; do
  echo "\$ pexquo ${command:+$command }$([[ $command == list ]] || echo --help)"
  "$program" $command $([[ $command == list ]] || echo --help)
  echo
done > "$build/program.txt"
doxygen site/Doxyfile
/usr/bin/python3 -m sphinx -E -W --keep-going -q -j auto -b html site "$build/html"
echo "the site is $build/html/index.html"

if [[ ${1:-} == --pictures ]]; then
  mkdir -p "$build/pictures"
  for page in index quickstart tiers performance functions reference-c; do
    for size in desk:1280,1600 phone:390,1600; do
      chromium --headless --no-sandbox --hide-scrollbars --window-size="${size#*:}" \
        --screenshot="$build/pictures/$page-${size%%:*}.png" "file://$PWD/$build/html/$page.html" 2> /dev/null
    done
  done
  echo "pictures are in $build/pictures"
fi

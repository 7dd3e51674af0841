#!/usr/bin/env bash
# Runs clang-tidy (.clang-tidy) over the sources of a configured build, all or those named.
#   scripts/tidy.sh [--build FOLDER] [FILE...]
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/release
if [[ "${1:-}" == --build ]]; then
  build=$2
  shift 2
fi
if [[ ! -f "$build/compile_commands.json" ]]; then
  echo "$build is not configured: cmake --preset release" >&2
  exit 2
fi
files=("$@")
if ((${#files[@]} == 0)); then
  mapfile -t files < <(find catalogue cli kro pex_core python quo_sub_kernel quo_kernel gen accuracy bench \
    tests -name '*.cc' 2>/dev/null | sort)
fi
# A warning flag of the other compiler is no finding.
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" \
  clang-tidy -p "$build" --quiet --extra-arg=-Wno-unknown-warning-option

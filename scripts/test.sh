#!/usr/bin/env bash
# Sets up a fresh Debian 12 as far as needed, builds, and runs the tests: by the preset "release", or
# the one named.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh
preset=${1:-release}
if [[ $preset == clang ]]; then install_packages clang-19; fi
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset" -j "$(nproc)"

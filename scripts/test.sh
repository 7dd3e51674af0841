#!/usr/bin/env bash
# Sets up a fresh Debian 12 as far as needed, builds, and runs the tests.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh
cmake --preset release
cmake --build --preset release
ctest --preset release -j "$(nproc)"

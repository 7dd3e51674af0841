# Sourced by the other scripts: what the build and the tests need.
. scripts/need.sh
need g++ cmake ninja-build pkg-config libhwy-dev libopenblas-dev libmpfr-dev libmpc-dev libgmp-dev \
  libgtest-dev libbenchmark-dev libsleef-dev libboost-dev libgsl-dev libcli11-dev gnuplot-nox \
  python3 clang-format

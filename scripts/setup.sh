#!/usr/bin/env bash
# Installs the missing Debian packages; sourced by the other scripts.

# install_packages NAME...: those of them that are missing; ends the script when that takes more
# rights than it has.
install_packages() {
  local package missing=() sudo=()
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
      missing+=("$package")
  done
  if ((${#missing[@]} == 0)); then return; fi
  if ((EUID != 0)); then
    if ! sudo -n true 2>/dev/null; then
      echo "These packages are missing; install them, then run this again:" >&2
      echo "  apt-get install ${missing[*]}" >&2
      exit 1
    fi
    sudo=(sudo)
  fi
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq "${missing[@]}"
}

install_packages g++ cmake ninja-build pkg-config libhwy-dev libopenblas-dev libmpfr-dev libmpc-dev \
  libgmp-dev libgtest-dev libbenchmark-dev libsleef-dev libboost-dev libgsl-dev libcli11-dev \
  libopenmpi-dev openmpi-bin gnuplot-nox python3 python3-dev python3-numpy python3-pytest \
  pybind11-dev clang-format

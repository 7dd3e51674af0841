#!/usr/bin/env bash
# Uses the Debian packages of a folder as their users do: builds and runs programs in C and C++ by
# pkg-config and by CMake, runs a Python program and the program pexquo.
#
#   scripts/try_packages.sh FOLDER               unpacked into a folder, which alone is searched
#   scripts/try_packages.sh --clean-root FOLDER  installed by apt in a fresh Debian 12 (as root)
set -euo pipefail
consumer=$(cd "$(dirname "$0")/.." && pwd)/tests/install/consumer
clean_root=
if [[ $1 == --clean-root ]]; then clean_root=yes; shift; fi
debs=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root

# What each package has to hold in its control part and among its documents.
check_package() {
  local deb=$1 name part most
  name=$(dpkg-deb -f "$deb" Package)
  mkdir -p "$work/$name"
  dpkg-deb -e "$deb" "$work/$name/control"
  dpkg-deb -x "$deb" "$work/$name/data"
  for part in Version Architecture Maintainer Section Depends Description; do
    [[ -n $(dpkg-deb -f "$deb" "$part") ]] || { echo "$name: no field $part" >&2; return 1; }
  done
  (cd "$work/$name/data" && md5sum --quiet -c ../control/md5sums)
  # Each entry is rounded up to whole KiB.
  most=$(($(du -sk --apparent-size "$work/$name/data" | cut -f 1) + $(find "$work/$name/data" | wc -l)))
  if (($(dpkg-deb -f "$deb" Installed-Size) > most)); then
    echo "$name: an Installed-Size above $most" >&2
    return 1
  fi
  for part in copyright changelog.Debian.gz; do
    [[ -s $work/$name/data/usr/share/doc/$name/$part ]] || { echo "$name: no $part" >&2; return 1; }
  done
  if [[ $name == libpexquo1 ]]; then
    for part in symbols shlibs triggers; do
      [[ -s $work/$name/control/$part ]] || { echo "$name: no $part" >&2; return 1; }
    done
    if [[ -e $work/$name/control/postinst ]]; then echo "$name: a postinst" >&2; return 1; fi
  fi
  echo "$name: $(dpkg-deb -f "$deb" Version), needs $(dpkg-deb -f "$deb" Depends)"
}

# Runs in the root: try_all CONSUMER LIBRARY_FOLDER. Without more settings than the caller made.
try_all() {
  set -euo pipefail
  local consumer=$1 libraries=$2 version program build
  version=$(pkg-config --modversion pexquo)
  build=$(mktemp -d)
  g++ -std=c++11 "$consumer/in_cxx.cc" -o "$build/in_cxx" $(pkg-config --cflags --libs pexquo kro)
  gcc -std=c89 "$consumer/in_c.c" -o "$build/in_c" $(pkg-config --cflags --libs pexquo kro)
  gcc -std=c89 "$consumer/front_in_c.c" -o "$build/front_in_c" \
    $(pkg-config --cflags --libs pexquo-front)
  local programs=(in_cxx in_c front_in_c) components=kernels,front
  if [[ -e $libraries/cmake/pexquo/pexquo-cpp.cmake ]]; then
    g++ -std=c++20 "$consumer/cpp.cc" -o "$build/cpp" $(pkg-config --cflags --libs pexquo-cpp)
    programs+=(cpp)
    components+=,cpp
  fi
  cmake -S "$consumer" -B "$build/cmake" -DEXPECTED_VERSION="$version" \
    -DEXPECTED_COMPONENTS="$components" > "$build/log" || { cat "$build/log" >&2; return 1; }
  cmake --build "$build/cmake" > "$build/log" || { cat "$build/log" >&2; return 1; }
  for program in "${programs[@]}"; do
    "$build/$program" > /dev/null
    "$build/cmake/$program" > /dev/null
    if ldd "$build/$program" | grep -E 'lib(kro|pexquo)' | grep -vF "=> $libraries/"; then
      echo "$program takes a library from elsewhere" >&2
      return 1
    fi
    echo "$program: built by pkg-config and by CMake, runs"
  done
  [[ $(echo 0 | pexquo eval exp) == 1 ]]
  [[ $(pexquo --version) == *"$version"* ]]
  echo "pexquo: $(pexquo --version)"
  if [[ -d $libraries/../python3/dist-packages/pexquo ]]; then
    /usr/bin/python3 -B "$consumer/in_python.py" "$version"
  fi
  rm -rf "$build"
}

for deb in "$debs"/*.deb; do check_package "$deb"; done

if [[ -z $clean_root ]]; then
  for deb in "$debs"/*.deb; do dpkg-deb -x "$deb" "$root"; done
  libraries=$root/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
  export LD_LIBRARY_PATH=$libraries PKG_CONFIG_LIBDIR=$libraries/pkgconfig PATH=$root/usr/bin:$PATH \
    CMAKE_PREFIX_PATH=$root/usr PYTHONPATH=$root/usr/lib/python3/dist-packages
  try_all "$consumer" "$libraries"
else
  debootstrap --variant=minbase bookworm "$root" > "$work/log" 2>&1 ||
    { tail "$work/log" >&2; exit 1; }
  mkdir "$root/try"
  cp "$debs"/*.deb "$root/try"
  cp -r "$consumer" "$root/try/consumer"
  chroot "$root" bash -c "export DEBIAN_FRONTEND=noninteractive
    apt-get install -y -qq --no-install-recommends /try/*.deb gcc g++ make cmake pkg-config" \
    > "$work/log" 2>&1 || { tail "$work/log" >&2; exit 1; }
  libraries=/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
  chroot "$root" bash -c "$(declare -f try_all); try_all /try/consumer $libraries"
  # And away again without a trace.
  chroot "$root" bash -c "dpkg -P \$(dpkg-query -W -f '\${Package} \${Source}\n' |
    awk '\$2 == \"pexquo\" {print \$1}')" > "$work/log" 2>&1 || { tail "$work/log" >&2; exit 1; }
  if find "$root/usr" "$root/var/lib/dpkg/info" -name '*pexquo*' -o -name 'libkro*' | grep .; then
    echo "these stay behind after the packages were purged" >&2
    exit 1
  fi
  echo "installed, used and purged"
fi

#!/usr/bin/env bash
# Builds the Debian packages in build/package/packages and holds them against Debian's policy
# (lintian): an error of lintian's ends it with status 1, warnings are shown. Then uses them from C,
# C++, Python and a shell, unpacked into a folder of their own.
#
#   scripts/package.sh [--clean-root]
#
# --clean-root: also installs them with apt into a fresh Debian 12 (debootstrap; as root, with a
# network), where they have nothing but what they depend on.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh
packages=(dpkg-dev fakeroot file lintian)
if [[ ${1:-} == --clean-root ]]; then packages+=(debootstrap); fi
install_packages "${packages[@]}"
build=${PEXQUO_PACKAGE_BUILD:-build/package}
launcher=()
if command -v ccache > /dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DCMAKE_SKIP_INSTALL_RPATH=ON -DPEXQUO_PACKAGES=ON -DPEXQUO_TESTS=OFF -DPEXQUO_BENCH=OFF \
  -DCMAKE_SHARED_LINKER_FLAGS=-Wl,-z,relro,-z,now -DCMAKE_MODULE_LINKER_FLAGS=-Wl,-z,relro,-z,now \
  -DCMAKE_EXE_LINKER_FLAGS=-Wl,-z,relro,-z,now "${launcher[@]}"
cmake --build "$build" -j "${PEXQUO_JOBS:-$(nproc)}"
rm -rf "$build/packages"
# Files bear the date of the release: the same source makes the same packages.
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l packaging/changelog -S Timestamp)
export SOURCE_DATE_EPOCH
(cd "$build" && cpack)
debs=("$build"/packages/*.deb)

printf '\n== lintian\n'
lintian --tag-display-limit 0 --fail-on error "${debs[@]}"
printf '\n== The packages in use\n'
scripts/try_packages.sh "$build/packages"
if [[ ${1:-} == --clean-root ]]; then
  printf '\n== A fresh Debian 12\n'
  scripts/try_packages.sh --clean-root "$build/packages"
fi

#!/usr/bin/env bash
# Formats the sources in place; with --check, names those that would change and fails. Sources made by
# a generator (*_tables.h, *_tables.cc, *_polynomials.h, pex_functions.h, front_functions.h,
# function_list.hpp) keep the shape that it gives them.
set -euo pipefail
cd "$(dirname "$0")/.."
arguments=(-i)
[[ "${1:-}" == --check ]] && arguments=(--dry-run -Werror --ferror-limit=1)
find catalogue cli front include kro pex_core python quo_sub_kernel quo_kernel gen accuracy bench tests \
  examples \( -name '*.cc' -o -name '*.c' -o -name '*.h' -o -name '*.hpp' \) ! -name '*_tables.h' \
  ! -name '*_tables.cc' ! -name '*_polynomials.h' ! -name pex_functions.h ! -name front_functions.h \
  ! -name function_list.hpp -print0 2>/dev/null | xargs -0 -r clang-format "${arguments[@]}" || {
  echo "run scripts/format.sh" >&2
  exit 1
}

# Sourced by the other scripts: need PACKAGE... installs the Debian packages that are missing.
need() {
  local missing=() sudo=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
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

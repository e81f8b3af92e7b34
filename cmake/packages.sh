# shellcheck shell=bash
# Debian packages that the scripts of this project need. Sourced, not run.

# What every build needs.
# shellcheck disable=SC2034
build_packages=(g++ cmake ninja-build pkg-config gettext libgtk2.0-dev libsndfile1-dev libsoxr-dev libcurl4-openssl-dev
  libavformat-dev libavcodec-dev libavutil-dev libcli11-dev nlohmann-json3-dev)

# Installs those of the named packages that are missing. Only root can; anybody else gets the line to run, and the
# script ends.
require_packages() {
  local missing=() package state
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "This script finds its packages with dpkg-query and apt-get, and this system lacks them." >&2
    echo "It needs what these Debian packages hold: $*" >&2
    exit 1
  fi
  for package in "$@"; do
    # One line for each architecture that the system knows the package for.
    state=$(dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null) || state=
    [[ $'\n'$state$'\n' == *$'\ninstalled\n'* ]] || missing+=("$package")
  done
  if ((${#missing[@]} == 0)); then
    return 0
  fi
  if (($(id -u) != 0)); then
    echo "Missing packages. Run this line, then the script again:" >&2
    echo "sudo apt-get update && sudo apt-get install -y --no-install-recommends ${missing[*]}" >&2
    exit 1
  fi
  apt-get update </dev/null
  DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" </dev/null
}

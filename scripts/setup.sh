#!/bin/sh
# Installs from Debian's packages what building, testing and running need; with the argument "bench" also what
# the benchmarks and their peers need. Needs root (directly or through sudo).
set -eu
packages="g++ clang cmake ninja-build doxygen python3"
packages="$packages libtbb-dev libgmp-dev libcli11-dev libfmt-dev nlohmann-json3-dev libgtest-dev"
[ "${1:-}" != bench ] || packages="$packages libbenchmark-dev libcgal-dev voro++-dev valgrind"
missing=""
for package in $packages; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0
as_root=""
[ "$(id -u)" = 0 ] || as_root=sudo
$as_root apt-get update -q
# shellcheck disable=SC2086  # the list is meant to be split
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing

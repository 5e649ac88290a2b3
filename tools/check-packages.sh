#!/usr/bin/env bash
# The Debian packages that `make check` needs beyond a C++ build machine (g++, cmake, make, git,
# python3, GoogleTest), checked with dpkg-query before anything is built. Run as root, it installs
# the missing ones with apt-get; otherwise it prints the apt-get command to run and fails, so that
# make check stops at once. On a machine that has them all it does no apt work.
set -euo pipefail

# package               what needs it
table='
clang                   fuzz smoke run: clang++ builds the libFuzzer targets
libclang-rt-14-dev      fuzz smoke run: the libFuzzer and sanitizer runtimes of clang
python3-biopython       interoperability test: Biopython reads the phd and ABIF files
staden-io-lib-utils     interoperability test: io_lib (scf_info, trace_dump) reads the chromatograms
libbio-perl-perl        interoperability test: BioPerl reads the phd and SCF files
groff-base              manual page test: groff renders doc/synthcall.1
parallel                scale-out test: GNU parallel runs synthcall on parts of one input
dpkg-dev                Debian package test: dpkg-shlibdeps and dpkg-deb
file                    Debian package test: CPack finds the shared libraries with file(1)
'

if ! command -v dpkg-query >/dev/null; then
  echo "check-packages: no dpkg-query, so these cannot be checked; tests that miss one say so:"
  printf '%s\n' "$table" | sed '/^$/d; s/^/  /'
  exit 0
fi

missing=()
while read -r package _; do
  [ -n "$package" ] || continue
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) || true
  [ "$status" = installed ] || missing+=("$package")
done <<<"$table"
[ ${#missing[@]} -gt 0 ] || exit 0

install="apt-get install -y --no-install-recommends ${missing[*]}"
if [ "$(id -u)" != 0 ]; then
  echo "make check needs Debian packages that are not installed:"
  awk -v missing=" ${missing[*]} " 'NF && index(missing, " " $1 " ") { print "  " $0 }' <<<"$table"
  echo "Run this as root, then make check again:"
  echo "  apt-get update && $install"
  exit 1
fi

echo "check-packages: installing ${missing[*]}"
log=$(mktemp "${TMPDIR:-/tmp}/check-packages.XXXXXX")
if ! { apt-get update -q && DEBIAN_FRONTEND=noninteractive $install; } </dev/null >"$log" 2>&1; then
  tail -20 "$log"
  echo "check-packages: apt-get failed; its output: $log"
  exit 1
fi
rm -f "$log"

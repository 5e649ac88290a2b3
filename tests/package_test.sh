#!/bin/sh
# package_test.sh CPACK BUILD_DIR BINARY: builds the Debian package of BUILD_DIR into a scratch
# directory, unpacks it into a scratch root and checks that what it installs works: the exact file
# list, library dependencies found by dpkg-shlibdeps, a version that matches the program's, the
# unpacked program's -v output. The manual page it installs is doc/synthcall.1, which the man_page
# test renders. Exits 77 (skipped; a failure in CI) when dpkg-dev or file is missing.
cpack=$1 build=$2 binary=$3
for tool in dpkg-deb dpkg-shlibdeps file; do
  command -v $tool >/dev/null || { echo "$tool not found"; [ "$CI" = true ] && exit 1; exit 77; }
done
scratch=$(mktemp -d) && trap 'rm -rf "$scratch"' EXIT
fail() { echo "FAIL: $*"; exit 1; }

# CPack first asks the build tool to bring the tree up to date ("preinstall"), which would build
# every target while other tests run. Naming a generator without that step packages the tree as it
# is: CPack uses the generator only to decide on that step; the install rules are the tree's own.
(cd "$scratch" && "$cpack" --config "$build/CPackConfig.cmake" -B "$scratch" \
  -D CPACK_CMAKE_GENERATOR=Ninja >cpack.log 2>&1) || { cat "$scratch/cpack.log"; fail cpack; }
deb=$(ls "$scratch"/*.deb) || fail "no package"

files=$(dpkg-deb -c "$deb" | awk '!/^d/ { print $6 }' | sort | tr '\n' ' ')
want="./usr/bin/synthcall ./usr/share/doc/synthcall/README.md ./usr/share/man/man1/synthcall.1 "
[ "$files" = "$want" ] || fail "package files: $files"
depends=$(dpkg-deb -f "$deb" Depends)
case "$depends" in *libc6*libstdc++6*) ;; *) fail "Depends: $depends" ;; esac

dpkg-deb -x "$deb" "$scratch/root" || fail "dpkg-deb -x"
got=$("$scratch/root/usr/bin/synthcall" -v 2>&1) || fail "status $?"
[ "$got" = "$("$binary" -v 2>&1)" ] || fail "unpacked synthcall -v differs from $binary -v"
version=$(dpkg-deb -f "$deb" Version)
case "$got" in *"Version $version "*) ;; *) fail "package version $version not in -v output" ;; esac
echo "package: $(basename "$deb"), Depends: $depends"

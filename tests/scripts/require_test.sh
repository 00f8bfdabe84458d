#!/usr/bin/env bash
# scripts/require names every missing program with its Debian package, one line each, and exits 3;
# with everything present it says nothing and exits 0.
set -uo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# A PATH that holds only what the script itself runs with: every program of the job is missing.
bin=$(mktemp -d)
trap 'rm -rf "$bin"' EXIT
for p in bash env; do ln -s "$(command -v $p)" "$bin/$p"; done

out=$(PATH=$bin "$root/scripts/require" com 2>&1)
rc=$?
[ $rc -eq 3 ] || fail "com with nothing installed: exit $rc, expected 3"
for line in \
  'missing: the program wineboot, from the Debian package wine (`scripts/setup --com` installs it)' \
  'missing: the program wineserver, from the Debian package wine (`scripts/setup --com` installs it)' \
  'missing: the program x86_64-w64-mingw32-widl, from the Debian package mingw-w64-tools (`scripts/setup --com` installs it)' \
  'missing: the program i686-w64-mingw32-g++-posix, from the Debian package g++-mingw-w64-i686 (`scripts/setup --com` installs it)'; do
  grep -qxF -- "$line" <<<"$out" || fail "com: no line '$line' in:
$out"
done

out=$(PATH=$bin "$root/scripts/require" native 2>&1)
rc=$?
[ $rc -eq 3 ] || fail "native with nothing installed: exit $rc, expected 3"
grep -qxF -- 'missing: the program cmake, from the Debian package cmake (`scripts/setup` installs it)' <<<"$out" ||
  fail "native: cmake not named with its package:
$out"

out=$(PATH=$bin "$root/scripts/require" fuzz 2>&1)
rc=$?
[ $rc -eq 3 ] || fail "fuzz with nothing installed: exit $rc, expected 3"
grep -qxF -- 'missing: the program clang++, from the Debian package clang (`scripts/setup` installs it)' <<<"$out" ||
  fail "fuzz: clang++ not named with its package:
$out"

out=$("$root/scripts/require" native 2>&1)
rc=$?
[ $rc -eq 0 ] && [ -z "$out" ] || fail "native on this machine: exit $rc, output '$out'"

out=$("$root/scripts/require" bogus 2>&1)
[ $? -eq 2 ] || fail "an unknown job is a usage error"

[ $failures -eq 0 ] && echo PASS
exit $((failures > 0))

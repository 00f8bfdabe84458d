#!/usr/bin/env bash
# What a user of the installed Tovrand does: install the build into a fresh prefix, build
# examples/cpp against it with CMake (find_package) and with pkg-config alone, and run both against a
# private server holding the sample data; the installed command's --version and demo work from the
# prefix, and the installed headers need no include path but <prefix>/include.
#   tests/install/install_use_test.sh BUILD_DIR      (CXX names the compiler; default c++)
set -uo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${1:?usage: install_use_test.sh BUILD_DIR}
cxx=${CXX:-c++}
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

client=$(command -v mariadb || command -v mysql) || { echo "FAIL: no mariadb client"; exit 1; }
work=$(mktemp -d "${TMPDIR:-/tmp}/tovrand-install-test.XXXXXX")
prefix=$work/prefix
server_dir=""
cleanup() {
  [ -n "$server_dir" ] && "$prefix/share/tovrand/sandbox" stop "$server_dir" >/dev/null 2>&1
  rm -rf "$work"
}
trap cleanup EXIT

# A private build of the example must not see a system-wide or configured connection setting.
unset TOVRAND_DSN TOVRAND_CONFIG TOVRAND_TRACE
export XDG_CONFIG_HOME=$work/config

cmake --install "$build" --prefix "$prefix" >"$work/install.log" 2>&1 ||
  { echo "FAIL: cmake --install:"; cat "$work/install.log"; exit 1; }

library=$(find "$prefix" -name 'libtovrand.so' | head -n 1)
[ -n "$library" ] || { echo "FAIL: no libtovrand.so under $prefix"; find "$prefix"; exit 1; }
libdir=$(dirname "$library")
for f in "$libdir/cmake/Tovrand/TovrandConfig.cmake" "$libdir/cmake/Tovrand/TovrandConfigVersion.cmake" \
  "$libdir/cmake/Tovrand/TovrandTargets.cmake" "$libdir/pkgconfig/tovrand.pc" "$prefix/bin/tovrand" \
  "$prefix/include/tovrand/Version.h" "$prefix/include/tovrand/porder/clsDataPOrder.h" \
  "$prefix/include/tovrand/host/NativeHost.h" "$prefix/include/tovrand/component/Component.h" \
  "$prefix/share/tovrand/schema/tovrand.sql" "$prefix/share/tovrand/schema/sample.sql" \
  "$prefix/share/tovrand/schema/grants.sql" "$prefix/share/doc/tovrand/README.md" \
  "$prefix/share/man/man1/tovrand.1"; do
  [ -f "$f" ] || fail "not installed: ${f#"$prefix"/}"
done
[ -x "$prefix/share/tovrand/sandbox" ] || fail "not installed as a program: share/tovrand/sandbox"
soname=$(objdump -p "$library" | awk '$1 == "SONAME" {print $2}')
[[ $soname =~ ^libtovrand\.so\.[0-9]+$ ]] || fail "SONAME of libtovrand.so: '$soname'"
for dir in tooling cli tests odbc mariadb; do
  [ ! -e "$prefix/include/tovrand/$dir" ] || fail "include/tovrand/$dir is installed; it is not for users"
done
[ "$(ls "$prefix/include/tovrand/host")" = "NativeHost.h" ] ||
  fail "host headers beyond NativeHost.h: $(ls "$prefix/include/tovrand/host")"
[ "$(ls "$prefix/include/tovrand/engine")" = "ConnectionSettings.h" ] ||
  fail "engine headers beyond ConnectionSettings.h: $(ls "$prefix/include/tovrand/engine")"

# Installed headers name one another as <tovrand/...>: a quoted repository-root include would need the
# source tree's layout on the include path.
quoted=$(grep -rn '#include "' "$prefix/include/tovrand" || true)
[ -z "$quoted" ] || fail "installed headers with quoted includes: $quoted"
# Every installed header compiles with <prefix>/include alone.
for h in $(cd "$prefix/include" && find tovrand -name '*.h' | sort); do echo "#include <$h>"; done >"$work/all_headers.cpp"
"$cxx" -std=c++20 -fsyntax-only -I"$prefix/include" "$work/all_headers.cpp" 2>"$work/headers.log" ||
  { fail "the installed headers do not compile on their own:"; head -n 30 "$work/headers.log"; }

version=$("$prefix/bin/tovrand" --version)
[[ $version =~ ^tovrand\ [0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "tovrand --version: '$version'"
pc_version=$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --modversion tovrand)
[ "tovrand $pc_version" = "$version" ] || fail "pkg-config version $pc_version, command $version"

# The private server from the installed script, loaded with the installed schema and sample data.
out=$("$prefix/share/tovrand/sandbox" start --watch $$ 2>&1) || { echo "FAIL: sandbox start:"; echo "$out"; exit 1; }
dsn=$(sed -n 's/^DSN=//p' <<<"$out")
server_dir=$(sed -n 's/^DIR=//p' <<<"$out")
database=$(cat "$server_dir/database")
for sql in tovrand.sql sample.sql; do
  "$client" --no-defaults -uroot --socket="$server_dir/mysqld.sock" "$database" \
    <"$prefix/share/tovrand/schema/$sql" || fail "loading $sql"
done

expected="libtovrand ${version#tovrand } (headers ${version#tovrand })
clsDataPOrder.QueryItem(2026090001) -> 1
  customer C001, item FG-1001, quantity 3000
clsDataPOrder.QueryItem(1999010001) -> 0"

check_example() {
  local how=$1 program=$2 setting=${3:-$dsn} got
  got=$(TOVRAND_DSN=$setting "$program" 2>&1)
  local rc=$?
  [ $rc -eq 0 ] || fail "$how: the example exited with $rc"
  [ "$got" = "$expected" ] || fail "$how: the example printed:
$got
expected:
$expected"
}

# With CMake: find_package(Tovrand) and Tovrand::tovrand.
if cmake -S "$root/examples/cpp" -B "$work/example-cmake" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" >"$work/example-cmake.log" 2>&1 &&
  cmake --build "$work/example-cmake" >>"$work/example-cmake.log" 2>&1; then
  check_example "CMake" "$work/example-cmake/example"
  # The library carries both engines: the same answers on the one the setting names.
  check_example "CMake, engine=mariadb" "$work/example-cmake/example" "$dsn$([[ $dsn == *\?* ]] && echo '&' || echo '?')engine=mariadb"
else
  fail "building examples/cpp with CMake:"
  tail -n 30 "$work/example-cmake.log"
fi

# With pkg-config alone; the library is found at run time through LD_LIBRARY_PATH, as for any prefix
# outside the loader's paths.
flags=$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs tovrand) || fail "pkg-config --cflags --libs tovrand"
if "$cxx" -std=c++20 "$root/examples/cpp/main.cpp" $flags -o "$work/example-pkg-config" 2>"$work/example-pc.log"; then
  LD_LIBRARY_PATH=$libdir check_example "pkg-config" "$work/example-pkg-config"
else
  fail "building examples/cpp with pkg-config ($flags):"
  tail -n 30 "$work/example-pc.log"
fi

# The installed command finds the installed private-server script: its demo runs with no setting.
"$prefix/bin/tovrand" demo >"$work/demo.out" 2>&1
rc=$?
[ $rc -eq 0 ] || { fail "installed tovrand demo exited with $rc:"; tail -n 20 "$work/demo.out"; }
# Its first line names the engine that answered: the native one, the default on Linux.
head -n 1 "$work/demo.out" | grep -qx 'Engine: mariadb (MariaDB Connector/C)' &&
  sed -n 2p "$work/demo.out" | grep -q '^Tovrand demo:' ||
  fail "installed tovrand demo printed: $(head -n 3 "$work/demo.out")"

[ $failures -eq 0 ] && echo "PASS" || echo "$failures failure(s)"
[ $failures -eq 0 ]

#!/usr/bin/env bash
# The Galera cluster the suites share under ctest: `up FILE` starts three nodes and writes what
# scripts/cluster prints (NODEn=, NODEn_TCP=, DSN=, DIR=, PORTS=) into FILE; `down FILE` stops them and
# removes FILE.
#
# Nothing may outlive the test run: the cluster is watched by a guard that lives as long as the
# process that started this script (ctest) and at most TOVRAND_CLUSTER_LIFETIME seconds (default
# 1800), so that a killed or hung ctest still takes the cluster down.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
cluster=$root/scripts/cluster
command=${1:-}
file=${2:-}
if [ -z "$command" ] || [ -z "$file" ]; then echo "usage: cluster_fixture.sh up|down FILE" >&2; exit 2; fi

case "$command" in
  up)
    if [ -f "$file" ]; then
      # A cluster left by an earlier run that was cut short.
      old=$(sed -n 's/^DIR=//p' "$file")
      [ -z "$old" ] || "$cluster" stop "$old" >/dev/null 2>&1 || true
      rm -f "$file"
    fi
    # The nodes run as the server's account when started by root: the directory stays below /tmp.
    dir=$(mktemp -d "${TMPDIR:-/tmp}/tovrand-ctest-cluster.XXXXXX")
    rmdir "$dir"
    lifetime=${TOVRAND_CLUSTER_LIFETIME:-1800}
    # The guard: ends when the test run ends, or after the lifetime, whichever comes first.
    setsid timeout "$lifetime" tail --pid="$PPID" -f /dev/null </dev/null >/dev/null 2>&1 &
    guard=$!
    if ! out=$("$cluster" start --nodes 3 --dir "$dir" --watch "$guard" 2>&1); then
      echo "$out" >&2
      kill "$guard" 2>/dev/null || true
      exit 1
    fi
    echo "$out"
    tmp="$file.tmp.$$"
    { echo "$out"; echo "GUARD=$guard"; } >"$tmp"
    mv "$tmp" "$file"
    ;;
  down)
    [ -f "$file" ] || exit 0
    dir=$(sed -n 's/^DIR=//p' "$file")
    guard=$(sed -n 's/^GUARD=//p' "$file")
    [ -z "$dir" ] || "$cluster" stop "$dir"
    [ -z "$guard" ] || kill "$guard" 2>/dev/null || true
    rm -f "$file"
    ;;
  *) echo "usage: cluster_fixture.sh up|down FILE" >&2; exit 2 ;;
esac

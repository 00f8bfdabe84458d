#!/usr/bin/env bash
# Runs PROGRAM on node N of the cluster tests/scripts/cluster_fixture.sh started: TOVRAND_TEST_DSN
# names that node's socket, so the program's databases and accounts live on the shared cluster.
#   on_cluster_node.sh FILE N PROGRAM [ARGS...]
set -euo pipefail
file=${1:-}
node=${2:-}
if [ -z "$file" ] || [ -z "$node" ] || [ $# -lt 3 ]; then
  echo "usage: on_cluster_node.sh FILE N PROGRAM [ARGS...]" >&2
  exit 2
fi
shift 2
[ -f "$file" ] || { echo "no cluster: $file is missing (the fixture cluster_up did not run or failed)" >&2; exit 1; }
dsn=$(sed -n "s/^NODE${node}=//p" "$file")
[ -n "$dsn" ] || { echo "no node $node in $file" >&2; exit 1; }
export TOVRAND_TEST_DSN=$dsn
export TOVRAND_TEST_CLUSTER_FILE=$file
exec "$@"

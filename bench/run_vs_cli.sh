#!/usr/bin/env bash
# `tovrand run` beside the mariadb command-line client, the same statement texts over the same unix socket
# of a private server:
#   - CALLS clsDataPOrder.QueryItem calls (one production order each) through one `tovrand run` process
#     (the default setting: the native engine), against one `mariadb --batch` process reading a file of
#     the same CALLS statements;
#   - LIST_CALLS clsDataPOrder.QueryByStrSql calls that list 100 orders (one customer's) the same way.
# Each side also runs a script of one call, so that process start and connecting can be taken out: the
# cost per call is (time of CALLS - time of 1) / (CALLS - 1). What `tovrand run` pays per call beyond
# the component itself (parsing the request, the JSON answer) is its cost per call less the component's
# time per call in bench/results/ratios.csv (native_us), when that file holds the member.
#
#   bench/run_vs_cli.sh [BUILD_DIR]      (default build-bench, else build; needs BUILD_DIR/tovrand)
#   TOVRAND_RUN_CALLS=3000 TOVRAND_RUN_LIST_CALLS=300 TOVRAND_RUN_ROWS=10000 TOVRAND_RUN_REPETITIONS=5
#   TOVRAND_BENCH_RESULTS=DIR            where run_vs_cli.txt goes (default bench/results)
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-}
if [ -z "$build" ]; then
  build=$here/build-bench
  [ -x "$build/tovrand" ] || build=$here/build
fi
tovrand=$build/tovrand
[ -x "$tovrand" ] || { echo "run_vs_cli: no tovrand program in $build (build it first)" >&2; exit 2; }
command -v mariadb >/dev/null || { echo "run_vs_cli: the mariadb client (Debian mariadb-client) is missing" >&2; exit 2; }

calls=${TOVRAND_RUN_CALLS:-3000}
lists=${TOVRAND_RUN_LIST_CALLS:-300}
rows=${TOVRAND_RUN_ROWS:-10000}
repetitions=${TOVRAND_RUN_REPETITIONS:-5}
results=${TOVRAND_BENCH_RESULTS:-$here/bench/results}

work=$(mktemp -d)
sandbox_dir=""
cleanup() {
  [ -n "$sandbox_dir" ] && "$here/scripts/sandbox" stop "$sandbox_dir" >/dev/null 2>&1 || true
  rm -rf "$work"
}
trap cleanup EXIT

out=$("$here/scripts/sandbox" start --watch $$)
dsn=$(sed -n 's/^DSN=//p' <<<"$out")
sandbox_dir=$(sed -n 's/^DIR=//p' <<<"$out")
socket=$sandbox_dir/mysqld.sock
client=(mariadb --batch --user=tovrand --password=tovrand --socket="$socket" tovrand)

"$tovrand" schema | "${client[@]}"
# Orders numbered 2026000001 on; customers hold 100 orders each, as in tovrand_bench's data sets.
"${client[@]}" >/dev/null <<SQL
INSERT INTO t_porder (F_ProdNo, F_OrderMode, F_OrderNo, F_OrderOutNo, F_ItemNo, F_CustNo, F_COrderNo, F_InQty,
  F_InDate, F_OutQty, F_OutDate, F_OutBkQty, F_BalQty, F_OrdQty, F_DeliverDate, F_ProdQty, F_ProdDate, F_Status,
  F_SalerID, F_WoNo)
SELECT 2026000000 + seq, IF(seq MOD 10 = 0, '外发加工', '正常'), 600000 + seq DIV 4, 700000 + seq,
  CONCAT('FG-', LPAD(seq MOD 200, 5, '0')), CONCAT('C', LPAD((seq - 1) DIV 100 + 1, 5, '0')), CONCAT('PO-', seq),
  seq MOD 50, DATE '2026-11-01' + INTERVAL seq MOD 300 DAY, seq MOD 7, DATE '2026-11-09', 0, 40 + seq MOD 60,
  100 + seq MOD 400, DATE '2026-12-15', seq MOD 90, DATE '2026-11-12', 1 + seq MOD 2, '王伟', 800000 + seq
FROM seq_1_to_$rows;
ANALYZE TABLE t_porder;
SQL


customers=$((rows / 100))
# $1: calls, $2: "item" or "list"; writes $work/$2-$1.jsonl and $work/$2-$1.sql
scripts() {
  local n=$1 kind=$2 k prod cust
  {
    echo '{"new":"p","class":"clsDataPOrder"}'
    for ((k = 0; k < n; ++k)); do
      if [ "$kind" = item ]; then
        prod=$((2026000000 + (k * 7919) % rows + 1))
        echo "{\"call\":\"p.QueryItem\",\"args\":{\"Entity\":{\"F_ProdNo\":$prod}}}"
      else
        cust=$(printf 'C%05d' $(((k * 37) % customers + 1)))
        echo "{\"call\":\"p.QueryByStrSql\",\"args\":{\"strSql\":\" where F_CustNo ='$cust'\"}}"
      fi
    done
    echo '{"release":"p"}'
  } >"$work/$kind-$n.jsonl"
  for ((k = 0; k < n; ++k)); do
    if [ "$kind" = item ]; then
      echo "select * from t_porder where F_ProdNo ='$((2026000000 + (k * 7919) % rows + 1))';"
    else
      echo "select * from t_porder where F_CustNo ='$(printf 'C%05d' $(((k * 37) % customers + 1)))';"
    fi
  done >"$work/$kind-$n.sql"
}

now() { date +%s.%N; }
# The median of the wall times of $repetitions runs of a command, in seconds.
timed() {
  local times=() r start
  for ((r = 0; r < repetitions; ++r)); do
    start=$(now)
    "$@" >/dev/null
    times+=("$(echo "$(now) - $start" | bc -l)")
  done
  printf '%s\n' "${times[@]}" | sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}
run_tovrand() { "$tovrand" run --dsn "$dsn" "$1"; }
run_client() { "${client[@]}" <"$1"; }

# What the component alone costs per call on the native engine, from the last tovrand_bench run.
component_us() {
  local key=$1 csv=$results/ratios.csv
  [ -r "$csv" ] || return 0
  awk -F, -v key="$key" 'NR == 1 { for (i = 1; i <= NF; ++i) if ($i == "native_us") col = i; next }
    $1 == key && col && $col > 0 { v = $col } END { if (v) print v }' "$csv"
}

report=$work/report.txt
{
  echo "tovrand run beside the mariadb client: $rows orders, medians of $repetitions runs"
  printf '%-38s %6s %10s %10s %9s %9s %7s %7s %9s\n' "workload" "calls" "run s" "client s" "run/call" "cli/call" \
    "total" "per call" "JSON/call"
} >"$report"
for workload in "item $calls porder.QueryItem clsDataPOrder.QueryItem" \
  "list $lists porder.QueryByStrSql.100 clsDataPOrder.QueryByStrSql(100_rows)"; do
  read -r kind n key label <<<"$workload"
  scripts "$n" "$kind"
  scripts 1 "$kind"
  run_tovrand "$work/$kind-$n.jsonl" | grep -c '"result":1' | grep -qx "$n" ||
    { echo "run_vs_cli: not every $label call answered 1" >&2; exit 1; }
  tr=$(timed run_tovrand "$work/$kind-$n.jsonl")
  tr1=$(timed run_tovrand "$work/$kind-1.jsonl")
  tc=$(timed run_client "$work/$kind-$n.sql")
  tc1=$(timed run_client "$work/$kind-1.sql")
  perRun=$(echo "($tr - $tr1) / ($n - 1) * 1000000" | bc -l)
  perCli=$(echo "($tc - $tc1) / ($n - 1) * 1000000" | bc -l)
  comp=$(component_us "$key")
  json="-"
  [ -n "$comp" ] && json=$(printf '%.1f us' "$(echo "$perRun - $comp" | bc -l)")
  printf '%-38s %6d %10.3f %10.3f %6.1f us %6.1f us %7.2f %7.2f %9s\n' "$label" "$n" "$tr" "$tc" "$perRun" \
    "$perCli" "$(echo "$tr / $tc" | bc -l)" "$(echo "$perRun / $perCli" | bc -l)" "$json" >>"$report"
done
{
  echo "run s, client s: one process answering every call; run/call, cli/call: (time of all - time of one"
  echo "call) / (calls - 1); total, per call: tovrand run over the client. JSON/call: run/call less the"
  echo "component's own time per call on the native engine (native_us of ratios.csv, the last tovrand_bench run)."
  echo "machine: $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2- | sed 's/^ //'), $(nproc) cores," \
    "load average $(cut -d' ' -f1-3 /proc/loadavg)"
} >>"$report"
cat "$report"
mkdir -p "$results"
cp "$report" "$results/run_vs_cli.txt"

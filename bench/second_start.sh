#!/usr/bin/env bash
# The cost of a second start that carries a command to the running copy:
# `ostrivane /stop` against a copy that shows nothing (so the copy's own
# work is nil), next to `true` as the floor of starting any process.
# Usage: bench/second_start.sh [BUILD_DIR]   (default build/)
# RUNS (default 30) repetitions give the median; hyperfine is used when present.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
app=$build/ostrivane
probe=$build/bench/map_timer
runs=${RUNS:-30}

name=second_start
. "$root/bench/virtual_screen.sh"

"$app" > "$tmp/app.log" 2>&1 &
pids+=($!)
"$probe" title "Ostrivane " 30000 > /dev/null || { echo "second_start: the copy did not come up" >&2; exit 1; }

# Median wall time of a command in ms, with hyperfine or with a plain loop.
median_ms() {
  if command -v hyperfine >/dev/null; then
    hyperfine -N -w 3 -r "$runs" --export-json "$tmp/h.json" "$*" >/dev/null 2>&1
    python3 -c 'import json,sys; print("%.1f" % (json.load(open(sys.argv[1]))["results"][0]["median"] * 1e3))' "$tmp/h.json"
    return
  fi
  local i t0 t1
  for i in 1 2 3; do "$@" >/dev/null 2>&1; done
  for i in $(seq 1 "$runs"); do
    t0=$(date +%s%N); "$@" >/dev/null 2>&1; t1=$(date +%s%N)
    echo $(( t1 - t0 ))
  done | sort -n | awk '{ v[NR] = $1 } END { m = (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2; printf "%.1f\n", m / 1e6 }'
}

floor=$(median_ms true)
second=$(median_ms "$app" /stop)
"$app" /quit

echo "Second start, median of $runs runs ($(command -v hyperfine >/dev/null && echo hyperfine || echo date loop), $(nproc) cores):"
echo
echo "| What | Median |"
echo "|---|---|"
echo "| \`true\` (the floor: starting a process) | $floor ms |"
echo "| \`ostrivane /stop\` to a running copy | $second ms |"

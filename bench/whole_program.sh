#!/usr/bin/env bash
# Whole-program figures of the desktop program, on a private Xvfb:
#   - start to main form shown (process start to the form's window mapped),
#     with 1, 1,000 and 10,000 groups in the data file
#   - peak memory (VmHWM) with the form up, and with 50 markers shown
#   - "/show" to all 100 line windows of a 50-marker group mapped, measured
#     from the start of the second copy that carries the command; the cost
#     of that second start alone is given beside it
#   - CPU ticks used while 50 markers are shown and nothing happens
# Usage: bench/whole_program.sh [BUILD_DIR]   (default build/)
# RUNS (default 5) repetitions give the median; IDLE_SECONDS (default 30).
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
app=$build/ostrivane
probe=$build/bench/map_timer
runs=${RUNS:-5}
idle=${IDLE_SECONDS:-30}

name=whole_program
. "$root/bench/virtual_screen.sh"

# The data file with a group of 50 markers.
. "$root/bench/marker_groups.sh"
marker_groups 1 > "$XDG_DATA_HOME/Ostrivane/ostrivane.ini"

now() { date +%s%N; }
median() { sort -n | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : int((v[NR / 2] + v[NR / 2 + 1]) / 2) }'; }
ms() { awk -v ns="$1" 'BEGIN { printf "%.1f", ns / 1e6 }'; }
hwm() { awk '/^VmHWM/ { print $2 }' "/proc/$1/status"; }
ticks() { sed 's/^.*) //' "/proc/$1/stat" | awk '{ print $12 + $13 }'; }

# Starts the probe and waits until it watches the root window; its output
# file then receives the time of the awaited moment.
watch() {
  local out=$1; shift
  "$probe" "$@" > "$out" &
  probe_pid=$!; pids+=("$probe_pid")
  local tries=0
  until grep -q ready "$out" 2>/dev/null; do
    tries=$((tries + 1)); [ "$tries" -lt 2000 ] || { echo "whole_program: probe did not start" >&2; exit 1; }
    sleep 0.005
  done
}
# The time the probe saw, in $at.
moment() {
  wait "$probe_pid" || { echo "whole_program: timed out waiting for $1" >&2; exit 1; }
  at=$(sed -n 2p "$2")
}
stop_app() {
  "$app" /quit
  wait "$1" 2>/dev/null || true
}

data=$XDG_DATA_HOME/Ostrivane/ostrivane.ini
cp "$data" "$tmp/bench50.ini"
# A data file of N groups of one marker each.
groups_file() {
  awk -v n="$1" 'BEGIN {
    printf "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nDataFormat=1\r\nScreenRes=1920x1080\r\nPC=bench\r\n"
    for (g = 1; g <= n; g++)
      printf "[Group%05d]\r\nDataFormat=1\r\nDefaults=0,0,-1,-1,-1,-1,-1,-1,\r\n1=%d,%d,40,40,255,1,100,0,\r\nNotes=\r\n", g, 100 + g % 1000, 100 + g % 700
  }' > "$data"
}

declare -A startup_ms
forms=()
for groups in 1 1000 10000; do
  groups_file "$groups"
  startup=()
  for i in $(seq 1 "$runs"); do
    watch "$tmp/form" title "Ostrivane " 120000
    t0=$(now)
    "$app" > "$tmp/app.log" 2>&1 &
    pid=$!; pids+=("$pid")
    moment "the main form" "$tmp/form"
    startup+=($(( at - t0 )))
    sleep 0.5
    [ "$groups" -ne 1 ] || forms+=("$(hwm "$pid")")
    stop_app "$pid"
  done
  startup_ms[$groups]=$(ms "$(printf '%s\n' "${startup[@]}" | median)")
done
cp "$tmp/bench50.ini" "$data"

"$app" Bench50 > "$tmp/app.log" 2>&1 &
pid=$!; pids+=("$pid")
watch "$tmp/lines" markers 100 30000
moment "the first 100 line windows" "$tmp/lines"

show=(); carrier=()
for i in $(seq 1 "$runs"); do
  "$app" /stop
  watch "$tmp/lines" markers 100 30000
  t0=$(now)
  "$app" /show
  moment "100 line windows after /show" "$tmp/lines"
  show+=($(( at - t0 )))
  # The same start with nothing to do ("/show" while showing): the carrier's own cost.
  t0=$(now); "$app" /show; t1=$(now)
  carrier+=($(( t1 - t0 )))
done
sleep 1
shown_hwm=$(hwm "$pid")
before=$(ticks "$pid")
sleep "$idle"
after=$(ticks "$pid")
stop_app "$pid"

echo "Whole program, median of $runs runs (Xvfb 1920x1080, $(nproc) cores):"
echo
echo "| What | Figure |"
echo "|---|---|"
for groups in 1 1000 10000; do
  echo "| Start to main form shown, $groups group(s) | ${startup_ms[$groups]} ms |"
done
echo "| Peak memory (VmHWM), form shown, no group | $(( $(printf '%s\n' "${forms[@]}" | median) / 1024 )) MiB |"
echo "| Peak memory (VmHWM), 50 markers shown | $(( shown_hwm / 1024 )) MiB |"
echo "| \`ostrivane /show\` to all 100 line windows of 50 markers mapped | $(ms "$(printf '%s\n' "${show[@]}" | median)") ms |"
echo "| of which the second start that carries the command | $(ms "$(printf '%s\n' "${carrier[@]}" | median)") ms |"
echo "| CPU while 50 markers are shown and nothing happens, ${idle} s | $(( after - before )) ticks of 1/$(getconf CLK_TCK) s |"

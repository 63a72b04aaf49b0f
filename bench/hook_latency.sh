#!/usr/bin/env bash
# What the mouse hook adds to a click elsewhere on the screen, on a private
# Xvfb: the time from a fake press of button 1 (XTest) to the press the
# window beneath the pointer receives, over CLICKS clicks away from any line:
#   a) no program running (the floor: the X server alone)
#   b) the program showing 50 markers, so its mouse hook is on
#   c) the same while second starts keep it loading and showing groups of 50
#      markers from a data file of 1,000 groups (no command of the command
#      line writes the data file, so loading stands in for the busy copy)
# Usage: bench/hook_latency.sh [BUILD_DIR]   (default build/)
# CLICKS (default 1000) clicks per case, GAP_MS (default 5) apart; median,
# 99th percentile and maximum.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
app=$build/ostrivane
probe=$build/bench/click_timer
lines=$build/bench/map_timer
clicks=${CLICKS:-1000}
gap=${GAP_MS:-5}

name=hook_latency
[ -x "$lines" ] || { echo "$name: $lines is not built" >&2; exit 1; }
. "$root/bench/virtual_screen.sh"
. "$root/bench/marker_groups.sh"
data=$XDG_DATA_HOME/Ostrivane/ostrivane.ini

# Starts the copy with the group Bench50 and waits for its 100 line windows.
start_app() {
  "$app" Bench50 > "$tmp/app.log" 2>&1 &
  pid=$!; pids+=("$pid")
  "$lines" markers 100 30000 > /dev/null || { echo "$name: the lines did not come up" >&2; exit 1; }
}
stop_app() {
  "$app" /quit
  local tries=0
  while kill -0 "$pid" 2>/dev/null && [ "$tries" -lt 100 ]; do sleep 0.05; tries=$((tries + 1)); done
  kill -0 "$pid" 2>/dev/null && { echo "$name: /quit did not end the copy" >&2; exit 1; }
  wait "$pid" 2>/dev/null || true
}
# "median_ms P p99_ms Q max_ms R clicks N at X Y" of the probe, into $result.
click() {
  result=$("$probe" clicks "$clicks" --gap "$gap" "$@") || { echo "$name: clicking failed" >&2; exit 1; }
}
field() { awk -v k="$1" '{ for (i = 1; i < NF; i++) if ($i == k) print $(i + 1) }' <<< "$2"; }
row() { echo "| $1 | $(field median_ms "$2") ms | $(field p99_ms "$2") ms | $(field max_ms "$2") ms |"; }

click
floor=$result

marker_groups 1 > "$data"
start_app
click
shown=$result
stop_app
# The place the lines of every group leave clear, found while they stand.
place=($(field at "$shown") $(awk '{ print $NF }' <<< "$shown"))

marker_groups 1000 > "$data"
start_app
: > "$tmp/loads"
(
  i=0
  until [ -e "$tmp/enough" ]; do
    "$app" "$(printf 'Bench50_%04d' $(( i % 999 + 2 )))" > /dev/null 2>&1
    echo >> "$tmp/loads"; i=$((i + 1))
  done
) &
loader=$!; pids+=("$loader")
sleep 1
loads=$(wc -l < "$tmp/loads")
click --at "${place[@]}"
busy=$result
loads=$(( $(wc -l < "$tmp/loads") - loads ))
touch "$tmp/enough"
wait "$loader"
stop_app

echo "Fake press to the press received by the window beneath, $clicks clicks $gap ms apart (Xvfb 1920x1080, $(nproc) cores):"
echo
echo "| Case | Median | 99th percentile | Maximum |"
echo "|---|---|---|---|"
row "no program running" "$floor"
row "50 markers shown (mouse hook on)" "$shown"
row "the same, while $loads second starts loaded groups of 50 from a 1,000-group data file" "$busy"

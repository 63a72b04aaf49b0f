#!/usr/bin/env bash
# CPU of the running copy (utime + stime from /proc/PID/stat) on a private
# Xvfb, SECONDS each, with 50 markers shown and so both hooks on:
#   - nothing happens (the floor)
#   - the pointer moves without pause over the screen and across the lines
#     (XTest, a step a millisecond, never over the program's form)
#   - a placement (Add Marker, by its shortcut Ctrl+M on the form) with the
#     pointer still, and then with the pointer moving
# Usage: bench/hook_cpu.sh [BUILD_DIR]   (default build/)
# SECONDS_EACH (default 10) per case; RUNS (default 3) copies give the median.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
app=$build/ostrivane
probe=$build/bench/click_timer
lines=$build/bench/map_timer
seconds=${SECONDS_EACH:-10}
runs=${RUNS:-3}

name=hook_cpu
command -v xdotool >/dev/null || { echo "$name: xdotool is not installed (scripts/install-deps)" >&2; exit 1; }
[ -x "$lines" ] || { echo "$name: $lines is not built" >&2; exit 1; }
. "$root/bench/virtual_screen.sh"
. "$root/bench/marker_groups.sh"
marker_groups 1 > "$XDG_DATA_HOME/Ostrivane/ostrivane.ini"

ticks() { sed 's/^.*) //' "/proc/$pid/stat" | awk '{ print $12 + $13 }'; }
# The ticks the copy used while the command ran, in $used; its output in $said.
measure() {
  local before
  before=$(ticks)
  said=$("$@")
  used=$(( $(ticks) - before ))
}

median() { sort -n | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
still=(); moving=(); placing_still=(); placing_moving=(); moves=(); placing_moves=()
for run in $(seq 1 "$runs"); do
  "$app" Bench50 > "$tmp/app.log" 2>&1 &
  pid=$!; pids+=("$pid")
  "$lines" markers 100 30000 > /dev/null || { echo "$name: the lines did not come up" >&2; exit 1; }
  sleep 1

  measure sleep "$seconds"; still+=("$used")
  measure "$probe" moves "$seconds"; moving+=("$used"); moves+=("${said#moves }")

  # The shortcut reaches the form once it has the focus; the placement hides
  # the form and puts up the four windows of the cross.
  form=$(xdotool search --onlyvisible --name '^Ostrivane ' | head -1)
  [ -n "$form" ] || { echo "$name: the main form is not shown" >&2; exit 1; }
  xdotool mousemove 1500 900 windowfocus --sync "$form" key ctrl+m
  "$lines" markers 104 10000 > /dev/null || { echo "$name: the placement did not start" >&2; exit 1; }
  sleep 1
  measure sleep "$seconds"; placing_still+=("$used")
  measure "$probe" moves "$seconds"; placing_moving+=("$used"); placing_moves+=("${said#moves }")

  "$app" /quit
  tries=0
  while kill -0 "$pid" 2>/dev/null && [ "$tries" -lt 100 ]; do sleep 0.05; tries=$((tries + 1)); done
  kill -0 "$pid" 2>/dev/null && { echo "$name: /quit did not end the copy" >&2; exit 1; }
done
mid() { printf '%s\n' "$@" | median; }

tick_ms=$(( 1000 / $(getconf CLK_TCK) ))
row() { echo "| $1 | $2 ticks ($(awk -v t="$2" -v ms="$tick_ms" -v s="$seconds" 'BEGIN { printf "%.1f", t * ms / (s * 10) }') %) |"; }
echo "CPU of the running copy with 50 markers shown, $seconds s each, median of $runs copies, ticks of $tick_ms ms (Xvfb 1920x1080, $(nproc) cores):"
echo
echo "| Case | CPU |"
echo "|---|---|"
row "nothing happens" "$(mid "${still[@]}")"
row "pointer moving across the lines ($(mid "${moves[@]}") moves)" "$(mid "${moving[@]}")"
row "placing a marker, pointer still" "$(mid "${placing_still[@]}")"
row "placing a marker, pointer moving ($(mid "${placing_moves[@]}") moves)" "$(mid "${placing_moving[@]}")"

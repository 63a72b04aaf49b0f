# Sourced by the whole-program benchmarks: checks that $app and $probe are
# built, then starts a private Xvfb (1920x1080) with the program's own home,
# config, data and runtime directories in $tmp, all removed on exit.
# Needs: $name (for messages), $app, $probe; sets $tmp, $pids, DISPLAY.
command -v Xvfb >/dev/null || { echo "$name: Xvfb is not installed (scripts/install-deps)" >&2; exit 1; }
for file in "$app" "$probe"; do
  [ -x "$file" ] || { echo "$name: $file is not built" >&2; exit 1; }
done

tmp=$(mktemp -d)
pids=()
cleanup() {
  local pid
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null || true; done
  rm -rf "$tmp"
}
trap cleanup EXIT

# A server of our own, on a display number it chooses.
mkfifo "$tmp/displayfd"
Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp -noreset 3>"$tmp/displayfd" >/dev/null 2>&1 &
pids+=($!)
read -r -t 20 display < "$tmp/displayfd" || { echo "$name: Xvfb did not start" >&2; exit 1; }
export DISPLAY=":$display"
export HOME=$tmp XDG_CONFIG_HOME=$tmp/config XDG_DATA_HOME=$tmp/data XDG_RUNTIME_DIR=$tmp/run
mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME/Ostrivane" && mkdir -m 700 "$XDG_RUNTIME_DIR"

#!/usr/bin/env bash
# A 5 MB page fetched through lib_clsHTTP on the libcurl transport from the
# test web server on this machine: time (median of RUNS) and peak memory.
# Usage: bench/http_fetch.sh [BUILD_DIR]   (default build/)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
runs=${RUNS:-9}
tmp=$(mktemp -d)
trap 'kill "$pid" 2>/dev/null || true; rm -rf "$tmp"' EXIT
python3 "$root/tests/net/http_server.py" > "$tmp/server" &
pid=$!
for _ in $(seq 1 50); do [ -s "$tmp/server" ] && break; sleep 0.1; done
port=$(cut -d' ' -f1 "$tmp/server")
echo "Fast: the page as fast as the server writes it"
"$build/bench/http_fetch" "http://127.0.0.1:$port/big" "$runs"
echo
echo "Slow: 64 KB pieces 5 ms apart"
"$build/bench/http_fetch" "http://127.0.0.1:$port/big?pause=5" 3

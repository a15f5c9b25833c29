#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The map against its goal of one frame (16 ms) on a phone-sized view: the offline world map at
# world, country and city zoom, and a photo's map row with its tiles cached.
# usage: bench/map.sh BUILD_DIR
set -euo pipefail

build=$(cd "$1" && pwd)
bench="$build/bin/map_bench"
[ -x "$bench" ] || { echo "no $bench: build first" >&2; exit 2; }
out="$build/bench/map.json"
mkdir -p "$build/bench"
"$bench" --benchmark_format=json --benchmark_out="$out" --benchmark_out_format=json > /dev/null

python3 - "$out" <<'PY'
import json, re, sys
runs = {re.sub(r"/(iterations|min_time|real_time).*$", "", b["name"]): b for b in json.load(open(sys.argv[1]))["benchmarks"]}
def ms(name):
    b = runs[name]
    return b["real_time"] * {"ns": 1e-6, "us": 1e-3, "ms": 1.0}[b["time_unit"]]
ok = True
for name, label in [("BM_OfflineMap/world", "offline map, world zoom:"), ("BM_OfflineMap/country", "offline map, country zoom:"),
                    ("BM_OfflineMap/city", "offline map, city zoom:"), ("BM_MapRowCachedTiles", "map row, cached tiles:")]:
    t = ms(name)
    ok = ok and t < 16
    print(f"{label:28s} {t:7.2f} ms   (goal: under 16 ms a frame)")
sys.exit(0 if ok else 1)
PY

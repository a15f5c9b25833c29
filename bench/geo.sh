#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The offline geocoder against its goals: loading the place data under 300 ms, a reverse
# look-up under 50 µs, under 60 MB for the loaded data.
# usage: bench/geo.sh BUILD_DIR
set -euo pipefail

build=$(cd "$1" && pwd)
bench="$build/bin/geo_bench"
[ -x "$bench" ] || { echo "no $bench: build first" >&2; exit 2; }
out="$build/bench/geo.json"
mkdir -p "$build/bench"
cat "$build/share/tessorin/places.bin" > /dev/null  # a warm start, as after the first use
"$bench" --benchmark_format=json --benchmark_out="$out" --benchmark_out_format=json > /dev/null

python3 - "$out" <<'PY'
import json, re, sys
runs = {re.sub(r"/(iterations|min_time|real_time).*$", "", b["name"]): b for b in json.load(open(sys.argv[1]))["benchmarks"]}
def t(name, unit):
    b = runs[name]
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3}
    return b["real_time"] * scale[b["time_unit"]] / scale[unit]
load = t("BM_Load", "ms")
near = t("BM_ReverseNearPlaces", "us")
anywhere = t("BM_ReverseAnywhere", "us")
data = runs["BM_Load"]["data_MB"]
resident = runs["BM_Load"]["resident_MB"]
print(f"load place data:          {load:8.1f} ms   (goal: under 300 ms)")
print(f"reverse, near places:     {near:8.2f} µs   (goal: under 50 µs)")
print(f"reverse, anywhere:        {anywhere:8.2f} µs   ({runs['BM_ReverseAnywhere']['named_%']:.0f}% named; the rest is sea or wilderness)")
print(f"loaded data:              {data:8.1f} MB   (goal: under 60 MB; resident growth {resident:.1f} MB)")
print(f"search 'rome':            {t('BM_Search/rome', 'ms'):8.1f} ms")
print(f"search 'paris, us':       {t('BM_Search/paris_us', 'ms'):8.1f} ms")
ok = load < 300 and near < 50 and anywhere < 50 and data < 60
sys.exit(0 if ok else 1)
PY

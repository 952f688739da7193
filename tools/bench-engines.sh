#!/usr/bin/env bash
# Runs the benchmarks on SQLite and on a throwaway PostgreSQL server of this computer, and prints
# each measured step side by side: milliseconds on each engine, their ratio, and the statements
# each engine was sent per unit of work.
#   tools/bench-engines.sh [--runs N] [bench ...]
# N rounds (default 1) alternate the engines; the best time of each step is kept, since other
# work on the computer only ever makes a step slower. Builds the benchmarks first, in
# $BRIMSETT_BUILD_DIR (default build-bench).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
runs=1
if [ "${1:-}" = "--runs" ]; then
    runs=$2
    shift 2
fi
benches=("$@")
if [ ${#benches[@]} = 0 ]; then
    benches=(prepare reconcile sob_import appointments code_sheet)
fi
build=${BRIMSETT_BUILD_DIR:-$root/build-bench}
case "$build" in /*) ;; *) build=$root/$build ;; esac

if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
fi
targets=()
for b in "${benches[@]}"; do targets+=("bench_$b"); done
cmake --build "$build" -j2 --target "${targets[@]}" >/dev/null

work=$(mktemp -d /tmp/brimsett-bench.XXXXXX)
chmod 755 "$work"  # the server runs as postgres when started by root
server=$work/pg
stop() {
    "$root/tools/pg-test-server.sh" stop "$server" || true
    rm -rf "$work"
}
trap stop EXIT
"$root/tools/pg-test-server.sh" start "$server" >/dev/null
# A round trip to the server waits for two processes to be scheduled, an SQLite call for none:
# on a computer busy with other work both engines run ahead of it (root only), or the server
# is measured mostly waiting its turn.
nice=()
if [ "$(id -u)" = 0 ]; then
    renice -n -10 -p "$(head -n 1 "$server/data/postmaster.pid")" >/dev/null
    nice=(nice -n -10)
fi

# Each program prints "step<TAB>name<TAB>ms<TAB>statements per unit<TAB>unit" per measured step.
for ((round = 1; round <= runs; round++)); do
    for b in "${benches[@]}"; do
        for engine in SQLite PostgreSQL; do
            echo "round $round: $b on $engine" >&2
            out=$work/$b.$engine.$round.txt
            pg=
            if [ $engine = PostgreSQL ]; then pg=$server; fi
            (cd "$work" && BRIMSETT_BENCH_PG=$pg "${nice[@]}" "$build/bench/bench_$b" >"$out" 2>&1) ||
                true
            if grep -q "DOES NOT USE AN INDEX" "$out"; then
                echo "  $b on $engine: some statement does not use an index (see below)" >&2
                grep -B1 -A6 "DOES NOT USE AN INDEX" "$out" >&2 || true
            fi
            grep -P '^step\t' "$out" | sed "s/^step/$b\t$engine/" >>"$work/steps.tsv" || {
                echo "  $b on $engine printed no step:" >&2
                tail -n 5 "$out" >&2
            }
        done
    done
done

awk -F'\t' '
    {
        key = $1 "\t" $3
        if (!(key in seen)) { seen[key] = 1; order[++n] = key; unit[key] = $6 }
        k = key "\t" $2
        if (!(k in ms) || $4 + 0 < ms[k] + 0) ms[k] = $4
        per[k] = $5
    }
    END {
        printf "%-13s %-44s %10s %10s %6s %10s %10s  %s\n", "bench", "step", "SQLite ms", \
            "PG ms", "ratio", "SQLite st", "PG st", "statements per"
        for (i = 1; i <= n; i++) {
            key = order[i]
            split(key, f, "\t")
            s = ms[key "\tSQLite"]; p = ms[key "\tPostgreSQL"]
            ratio = (s > 0 && p != "") ? sprintf("%.1f", p / s) : "-"
            flag = (ratio != "-" && ratio + 0 > 3) ? "  OVER 3x" : ""
            printf "%-13s %-44s %10s %10s %6s %10s %10s  %s%s\n", f[1], substr(f[2], 1, 44), \
                s, (p == "" ? "-" : p), ratio, per[key "\tSQLite"], per[key "\tPostgreSQL"], \
                unit[key], flag
        }
    }' "$work/steps.tsv"
echo "($runs round(s), best time of each step; $(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg)${nice:+, nice -10})"

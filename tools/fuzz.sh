#!/usr/bin/env bash
# Runs each fuzz target of the ministry's readers under libFuzzer for a while.
#   tools/fuzz.sh [SECONDS] [TARGET...]     (default 300 s each, every fuzz_* target)
# New inputs that widen coverage are kept in fuzz/corpus/<target>/; a crash leaves its input
# in build-fuzz/ (add it to the corpus once the reader is fixed).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
packages=(clang libclang-rt-14-dev)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"
fi
seconds=${1:-300}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(fuzz_remittance fuzz_error_report fuzz_batch_edit)
build=${BRIMSETT_FUZZ_DIR:-build-fuzz}
CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DBRIMSETT_FUZZ=ON >/dev/null
ninja -C "$build" "${targets[@]}"
samples=$root/../shared/ohip-samples
for t in "${targets[@]}"; do
    mkdir -p "fuzz/corpus/$t"
    seeds=("$root/fuzz/corpus/$t")
    [ -d "$samples" ] && seeds+=("$samples")
    # The first folder receives the new inputs; the samples only seed the run.
    (cd "$build" && "./fuzz/$t" -max_total_time="$seconds" -max_len=20000 -timeout=10 \
        -print_final_stats=1 "${seeds[@]}")
done

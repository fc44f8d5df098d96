#!/usr/bin/env bash
# Builds release and runs the benchmarks.
#   scripts/bench.sh [--filter REGEX] [--json FILE] [--min-time SECONDS]
set -euo pipefail
start=$PWD
cd "$(dirname "$0")/.."

arguments=()
while (($# > 0)); do
    case $1:$# in
        --filter:[2-9]*) arguments+=("--benchmark_filter=$2") ;;
        --json:[2-9]*) arguments+=("--benchmark_out=$(cd "$start" && realpath -m "$2")" --benchmark_out_format=json) ;;
        --min-time:[2-9]*) arguments+=("--benchmark_min_time=$2") ;;
        *) echo "usage: scripts/bench.sh [--filter REGEX] [--json FILE] [--min-time SECONDS]" >&2; exit 2 ;;
    esac
    shift 2
done

scripts/setup.sh --bench
scripts/build.sh release -DTESSERA_BUILD_BENCHMARKS=ON -- tessera_benchmarks
exec build/release/benchmarks/tessera_benchmarks "${arguments[@]}"

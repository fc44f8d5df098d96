#!/usr/bin/env bash
# Measures Tessera beside pandas, Polars, DuckDB and data.table: the same work on the same data, in one run, each on one
# thread bound to the same processor. Installs what is missing, makes the data, and writes a report with a chart.
#   scripts/compare.sh [--passes N] [--only ID,ID] [--rivals NAME,NAME|none] [--out FOLDER] [--add]
#   scripts/compare.sh --render [--out FOLDER]    makes the report again from the results in the folder
#     --passes N   how often each system is measured, one after the other; the lowest median counts (1)
#     --only       some of the workloads of benchmarks/rivals/workloads.csv
#     --rivals     some of pandas, polars, duckdb, datatable
#     --out        docs/benchmarks, or build/compare where --only or --rivals chooses
#     --add        adds to the results in the folder instead of replacing them
# TESSERA_BENCH_DATA names the folder of the data, PROCESSOR the processor to bind to (0).
set -euo pipefail
command="scripts/compare.sh${*:+ $*}"
start=$PWD
cd "$(dirname "$0")/.."

readonly RIVALS=$PWD/benchmarks/rivals PYTHON=/usr/bin/python3 # the Python that sees Debian's packages
passes=1
only=
rivals=pandas,polars,duckdb,datatable
out=$PWD/docs/benchmarks
partial=$PWD/build/compare
afresh=--afresh
render=
while (($# > 0)); do
    case $1:${2:-} in
        --render:*) render=1 ;;
        --add:*) afresh= ;;
        --passes:[1-9]*) passes=$2 && shift ;;
        --only:[a-z]*) only=$2 out=$partial && shift ;;
        --rivals:[a-z]*) rivals=${2/#none/} out=$partial && shift ;;
        --out:?*) out=$(cd "$start" && realpath -m "$2") partial=$out && shift ;;
        *) sed -n 's/^#   scripts/usage: scripts/p' "$0" >&2; exit 2 ;;
    esac
    shift
done
if [[ -n $render ]]; then
    exec "$RIVALS/report.py" render "$out"
fi

ids=${only:-$(tail -n +2 "$RIVALS/workloads.csv" | cut -d , -f 1 | paste -sd ,)}
for id in ${ids//,/ }; do
    grep -q "^$id," "$RIVALS/workloads.csv" || { echo "no workload $id; workloads.csv lists them" >&2; exit 2; }
done
for rival in ${rivals//,/ }; do
    compgen -G "$RIVALS/${rival}_workloads.*" > /dev/null || { echo "no rival $rival" >&2; exit 2; }
done

TESSERA_BENCH_DATA=$(cd "$start" && realpath -m "${TESSERA_BENCH_DATA:-${TMPDIR:-/tmp}/tessera-bench-data}")
export TESSERA_BENCH_DATA
if [[ -z $rivals && -e $TESSERA_BENCH_DATA/complete-v1 ]]; then
    scripts/setup.sh --bench
else
    scripts/setup.sh --compare
    "$PYTHON" benchmarks/make_data.py
fi
if [[ $rivals =~ polars|duckdb ]] && ! cmp -s "$RIVALS/package.json" build/rivals/installed.json; then
    mkdir -p build/rivals
    cp "$RIVALS/package.json" build/rivals/package.json
    (cd build/rivals && npm install --silent --no-package-lock --no-audit --no-fund && cp package.json installed.json)
fi
scripts/build.sh release -DTESSERA_BUILD_BENCHMARKS=ON -- tessera_benchmarks

# Ours, and the limits that some are held against.
names=$(awk -F , -v ids=",$ids," 'index(ids, "," $1 ",") {print $1; if ($4) print $4}' "$RIVALS/workloads.csv" |
    sort -u | paste -sd '|')

export OMP_NUM_THREADS=1 OPENBLAS_NUM_THREADS=1 NUMEXPR_NUM_THREADS=1 POLARS_MAX_THREADS=1
export NODE_PATH=$PWD/build/rivals/node_modules
scratch=$(mktemp -d) # written files and reports, on the file system that ours writes to
trap 'rm -rf "$scratch"' EXIT
version="$(sed -n 's/^project(Tessera VERSION \([^ ]*\).*/\1/p' CMakeLists.txt), $(c++ --version | head -n 1)"
readonly OWN=$PWD/build/release/benchmarks/tessera_benchmarks
failed=0

bound() {
    (cd "$scratch" && exec taskset -c "${PROCESSOR:-0}" "$@")
}

measure() { # SYSTEM
    echo "== $1" >&2
    case $1 in
        tessera)
            bound "$OWN" --benchmark_filter="^($names)\$" --benchmark_min_time=0.2 --benchmark_min_warmup_time=0.3 \
                --benchmark_repetitions=3 --benchmark_format=json > "$scratch/own.json" &&
                "$RIVALS/report.py" own "$scratch/own.json" --version "$version" ;;
        pandas) bound "$PYTHON" "$RIVALS/pandas_workloads.py" "$TESSERA_BENCH_DATA" "$ids" ;;
        datatable) bound Rscript "$RIVALS/datatable_workloads.R" "$TESSERA_BENCH_DATA" "$ids" ;;
        *) bound node --expose-gc "$RIVALS/$1_workloads.js" "$TESSERA_BENCH_DATA" "$ids" ;;
    esac >> "$scratch/lines.jsonl"
}

for ((pass = 1; pass <= passes; ++pass)); do
    for system in pandas polars tessera duckdb datatable; do
        [[ $system != tessera && ,$rivals, != *,$system,* ]] || measure "$system" || failed=1
    done
done
"$RIVALS/report.py" add "$out" "$scratch/lines.jsonl" ${afresh:+"$afresh"} --command "$command" \
    --commit "$(git describe --always --dirty 2> /dev/null || echo unknown)"
exit $failed

#!/usr/bin/env bash
# Counts the instructions of the chief operations of each family, and of compiling an empty host with tessera.hpp, and
# holds them against tests/instruction_counts.txt. Unlike times, they are the same on a busy machine.
#   scripts/check-instructions.sh [--update]    the option records today's counts
set -euo pipefail
cd "$(dirname "$0")/.."

readonly RECORDED=tests/instruction_counts.txt ROWS=10000 TOLERANCE=3 # percent

if ! grep -qw avx2 /proc/cpuinfo; then
    echo "not counted: the recorded counts are those of processors with AVX2" >&2
    exit 0
fi
scripts/setup.sh --bench
scripts/build.sh release -DTESSERA_BUILD_BENCHMARKS=ON -- tessera_instructions

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
counted=$work/counted.txt
build/release/benchmarks/tessera_instructions | cut -f 1 | while read -r workload; do
    echo "$workload $(scripts/count-instructions.sh release "$workload" $ROWS)"
done > "$counted"

printf '#include "tessera/tessera.hpp"\n\nint main()\n{\n}\n' > "$work/host.cpp"
g++ -std=c++20 -O2 -I . -S "$work/host.cpp" -o /dev/null -wrapper \
    "valgrind,--tool=cachegrind,--cache-sim=no,--cachegrind-out-file=/dev/null,--log-file=$work/compiler.txt"
echo "compile_host $(awk '/I +refs/ {gsub(",", ""); print $NF}' "$work/compiler.txt")" >> "$counted"

if [[ ${1:-} == --update ]]; then
    cp "$counted" "$RECORDED"
fi
awk -v tolerance=$TOLERANCE '
    NR == FNR { recorded[$1] = $2; next }
    !($1 in recorded) { printf "%-16s %12d is not recorded\n", $1, $2; failed = 1; next }
    {
        change = 100 * ($2 / recorded[$1] - 1)
        off = change > tolerance || change < -tolerance
        failed = failed || off
        if (off) printf "%-16s %12d where %12d are recorded: %+.1f %%\n", $1, $2, recorded[$1], change
        delete recorded[$1]
    }
    END {
        for (name in recorded) { printf "%-16s is recorded and no longer counted\n", name; failed = 1 }
        exit failed
    }' "$RECORDED" "$counted" || {
    echo "more than $TOLERANCE % off; after a look at why, scripts/check-instructions.sh --update records these counts" >&2
    exit 1
}
echo "$(wc -l < "$counted") instruction counts within $TOLERANCE % of those recorded"

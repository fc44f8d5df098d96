#!/usr/bin/env bash
# Measures time and peak memory of the chief operations from 1e4 to 1e7 rows, and grouping over 10 to 1e6 groups, each
# point in a process of its own; writes docs/benchmarks/growth.md and its plots. Takes some minutes and 8 GB.
#   scripts/growth.sh [--report]    the option only writes the page and plots again, from build/growth.txt
# MEASURE_WITH may name a command to run each process with, such as "taskset -c 1".
set -euo pipefail
cd "$(dirname "$0")/.."

readonly POINTS=build/growth.txt DOCS=docs/benchmarks
readonly OPERATIONS=(read_csv sort_i32 sort_str group_sum_i32 group_mean_str group_mean_sizes group_sorted
    merge_inner_i32 merge_inner_far merge_records rolling_mean)
readonly GROUPINGS=(group_sum_i32 group_mean_str group_mean_sizes group_transform group_sorted)

scripts/setup.sh --bench
if [[ ${1:-} != --report ]]; then
    scripts/build.sh release -DTESSERA_BUILD_BENCHMARKS=ON -- tessera_growth
    measure() { ${MEASURE_WITH:-} build/release/benchmarks/tessera_growth "$@"; }
    for rows in 1e4 1e5 1e6 1e7; do
        for operation in "${OPERATIONS[@]}"; do
            measure "$operation" $rows
        done
    done > $POINTS
    for groups in 1e1 1e2 1e3 1e4 1e5 1e6; do
        for operation in "${GROUPINGS[@]}"; do
            measure "$operation" 1e6 $groups | sed 's/^/groups:/'
        done
    done >> $POINTS
    scripts/build.sh release -- tessera_instructions
    for rows in 1e4 1e5 1e6; do
        for operation in "${OPERATIONS[@]}"; do
            echo "instructions:$operation $rows $(scripts/count-instructions.sh release "$operation" $rows)"
        done
    done >> $POINTS
fi

mkdir -p $DOCS
{
    sed '/^<!-- figures -->$/q' $DOCS/growth.md
    echo
    echo '| operation | rows | ms | of it system | ns per row | inputs, MB | result, MB | peak, MB | peak / (inputs + result) |'
    echo '| --- | --: | --: | --: | --: | --: | --: | --: | --: |'
    grep -v : $POINTS | sort -s -k 1,1 | awk '{
        printf "| %s | %d | %.2f | %.2f | %.0f | %.1f | %.1f | %.1f | %.2f |\n", $1, $2, $5 * 1e3, $6 * 1e3,
            $5 / $2 * 1e9, $7 / 1e6, $8 / 1e6, $9 / 1e6, $9 / ($7 + $8)
    }'
    echo
    echo 'Instructions per row:'
    echo
    echo '| operation | 10,000 rows | 100,000 | 1,000,000 |'
    echo '| --- | --: | --: | --: |'
    sed -n 's/^instructions://p' $POINTS | sort -s -k 1,1 |
        awk '{printf "%s", (NR % 3 == 1 ? "| " $1 : "") sprintf(" | %.0f", $3 / $2) (NR % 3 == 0 ? " |\n" : "")}'
    echo
    echo 'Grouping a million rows:'
    echo
    echo '| operation | groups | ms | peak / (inputs + result) |'
    echo '| --- | --: | --: | --: |'
    sed -n 's/^groups://p' $POINTS | sort -s -k 1,1 |
        awk '{printf "| %s | %d | %.2f | %.2f |\n", $1, $3, $5 * 1e3, $9 / ($7 + $8)}'
} > build/growth.md
mv build/growth.md $DOCS/growth.md

plot() { # FILE TITLE X-LABEL Y-LABEL X-EXPRESSION Y-EXPRESSION PREFIX OPERATION... ; further commands on standard input
    local file=$1 title=$2 xLabel=$3 yLabel=$4 x=$5 y=$6 prefix=$7
    shift 7
    gnuplot <<END
set terminal svg size 840, 480 font 'sans,13' background 'white'
set output '$DOCS/$file'
set title '$title'
set xlabel '$xLabel'
set ylabel '$yLabel'
set logscale x
set format x '10^{%L}'
set grid
set key outside right noenhanced
$(cat)
plot for [name in '$*'] '< grep "^$prefix'.name.' " $POINTS' using ($x):($y) with linespoints linewidth 2 title name
END
}

plot growth-time.svg 'Time per row, without the system giving memory' rows 'ns per row, a second run' \
    '$2' '($5-$6)/$2*1e9' '' "${OPERATIONS[@]}" <<< 'set logscale y
n_log_n(x) = 10 * log(x) / log(1e4)
set arrow from 1e4, n_log_n(1e4) to 1e7, n_log_n(1e7) nohead dashtype 2
set label "n log n" at 1.2e4, 12'
plot growth-memory.svg 'Peak memory' rows 'peak / (inputs + result)' '$2' '$9/($7+$8)' '' "${OPERATIONS[@]}" \
    <<< 'set yrange [0.9:*]
set arrow from 1e4, 1.25 to 1e7, 1.25 nohead dashtype 2'
plot growth-groups.svg 'Grouping a million rows' groups ms '$3' '$5*1e3' groups: "${GROUPINGS[@]}" <<< 'set logscale y'
echo "$DOCS/growth.md and its plots are written"

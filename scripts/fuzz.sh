#!/usr/bin/env bash
# Builds the fuzz targets, replays their corpora and looks for more, two targets at a time. Fails on a finding, whose
# input stays in build/fuzz/found; a target's program replays it when it is given the file.
#   scripts/fuzz.sh [SECONDS [TARGET...]]   SECONDS for each target, 60 unless given; 0 only replays
#   scripts/fuzz.sh --grow [TARGET...]      takes into fuzz/corpus what runs have found, as far as it adds coverage
# FUZZ_SEED=N makes the same choices as an earlier run with it, so long as programs and inputs are the same.
set -euo pipefail
cd "$(dirname "$0")/.."

# How inputs and memory are bound. What the library itself may take is bound by the targets.
# The entropic schedule takes more time than the targets do.
limits=(-max_len=600 -timeout=30 -rss_limit_mb=1024 -entropic=0 -seed="${FUZZ_SEED:-0}") # 0: another one each time
found=build/fuzz/found

runTarget() { # SECONDS TARGET
    local seconds=$1 name=$2 inputs=build/fuzz/inputs/$2 log=build/fuzz/$2.log mode=(-max_total_time="$1")
    local program=build/fuzz/fuzz/${name}_fuzzer
    mkdir -p "$inputs" "$found" "fuzz/corpus/$name"
    ((seconds > 0)) || mode=(-runs=0)
    if ! "$program" "${limits[@]}" "${mode[@]}" -artifact_prefix="$found/$name-" -print_final_stats=1 \
        -dict=fuzz/text.dict "$inputs" "fuzz/corpus/$name" &> "$log"; then
        grep -av '^#\|NEW_FUNC' "$log" | head -50
        echo "$name: FINDING, see $log and $found"
        return 1
    fi
    awk -v name="$name" -v seconds="$seconds" '/^stat::number_of_executed_units/ { runs = $2 } /DONE|INITED/ { cover = $4 }
        END { printf "%-20s %8d executions, %4d s, %6d edges\n", name, runs, seconds, cover }' "$log"
}

if [[ ${1:-} == --run ]]; then
    runTarget "$2" "$3"
    exit
fi
growth=false
seconds=60
if [[ ${1:-} == --grow ]]; then
    growth=true
    shift
elif (($# > 0)); then
    seconds=$1
    shift
fi
targets=("$@")
((${#targets[@]} > 0)) || mapfile -t targets < <(basename -s _fuzzer.cpp -a fuzz/*_fuzzer.cpp)

scripts/setup.sh --fuzz
scripts/build.sh fuzz

flatCalls() { # FILE: the names of the calls in it
    grep -o '\b\(MERVO_TSR_[A-Z][A-Za-z0-9_]*\|ReadData[A-Za-z0-9]*\)[(>,]' "$1" | tr -d '(>,' | grep '[a-z]' | sort -u
}
if missing=$(comm -23 <(flatCalls tessera/tessera.h) <(flatCalls fuzz/flat_calls_fuzzer.cpp)) && [[ -n $missing ]]; then
    printf 'no fuzz target calls %s\n' $missing
    exit 1
fi

if $growth; then
    for name in "${targets[@]}"; do
        "build/fuzz/fuzz/${name}_fuzzer" "${limits[@]}" -merge=1 -use_counters=0 "fuzz/corpus/$name" \
            "build/fuzz/inputs/$name" 2>&1 | tail -1
    done
    exit
fi
printf '%s\n' "${targets[@]}" | xargs -P 2 -I{} "scripts/fuzz.sh" --run "$seconds" {}

#!/usr/bin/env bash
# Cross-builds for 32-bit ARM, holds the library against its size budget, and runs all tests under qemu-user.
#   scripts/arm-test.sh [--record-size]    the option makes today's size the one that growth is counted from
set -euo pipefail
cd "$(dirname "$0")/.."

readonly BUDGET=$((1024 * 1024)) # 1 MiB
readonly RECORD=tests/arm_size.txt TOLERANCE=3 # percent of growth, until it is recorded

[[ -n ${TESSERA_HOLD_TOTAL:-} ]] || rm -f build/test_counts.txt
scripts/setup.sh --arm
scripts/build.sh arm

library=build/arm/libtessera.so
arm-linux-gnueabihf-strip -o build/arm/libtessera.stripped.so "$library"
size=$(stat -c %s build/arm/libtessera.stripped.so)
if [[ ${1:-} == --record-size ]]; then
    echo "$size" > "$RECORD"
fi
recorded=$(cat "$RECORD")
printf '== stripped libtessera.so: %d bytes of %d (%d %%), %+d since it was recorded\n' \
    "$size" "$BUDGET" $((size * 100 / BUDGET)) $((size - recorded))
echo "== its 20 largest symbols, in bytes"
arm-linux-gnueabihf-nm --print-size --size-sort --reverse-sort --radix=d "$library" |
    awk 'NR <= 20 {print $2 + 0, $4}' | c++filt | cut -c 1-160

status=0
scripts/run_suite.py arm UTC || status=1
if ((size > BUDGET)); then
    echo "libtessera.so is over its budget" >&2
    status=1
fi

if ((size * 100 > recorded * (100 + TOLERANCE))); then
    echo "libtessera.so grew by more than $TOLERANCE %; scripts/arm-test.sh --record-size records a size that is meant" >&2
    status=1
fi

# The tests may leave digests of seeded results; they are the same on every machine.
if [[ -s build/release/digests.txt ]]; then
    if diff build/release/digests.txt build/arm/digests.txt; then
        echo "== $(wc -l < build/arm/digests.txt) digests are those of build/release"
    else
        echo "the digests differ from those of build/release" >&2
        status=1
    fi
elif [[ -s build/arm/digests.txt ]]; then
    echo "== digests not compared: run scripts/test.sh first"
fi
scripts/run_suite.py --total
exit $status

#!/usr/bin/env bash
# Prints how many instructions an operation of benchmarks/measured/workloads.cpp takes: counted by callgrind on this
# machine, or on 32-bit ARM by a plugin of qemu's user mode. It expects its programs to be built.
#   scripts/count-instructions.sh release|arm WORKLOAD ROWS [GROUPS]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
program=build/$preset/benchmarks/tessera_instructions
log=$(mktemp)
trap 'rm -f "$log"' EXIT
export LD_BIND_NOW=1 # resolving names is no part of the operation
if [[ $preset == arm ]]; then
    qemu-arm -L /usr/arm-linux-gnueabihf -plugin build/release/benchmarks/libinstruction_counter.so \
        "$program" "$@" 2> "$log"
    count=$(sed -n 's/^instructions //p' "$log")
else
    valgrind --tool=callgrind --callgrind-out-file=/dev/null --toggle-collect=MeasuredOperation \
        "$program" "$@" 2> "$log" || true
    count=$(sed -n 's/.*Collected : //p' "$log")
fi
if ((count == 0)); then
    cat "$log" >&2
    exit 1
fi
echo "$count"

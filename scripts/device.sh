#!/usr/bin/env bash
# Measures what a small device wants to know, for 32-bit ARM under qemu-user: size, loading, a small table, bytes held,
# and the instructions of the chief operations; writes docs/benchmarks/device.md.
set -euo pipefail
cd "$(dirname "$0")/.."

readonly PAGE=docs/benchmarks/device.md ROWS=10000
readonly QEMU=(qemu-arm -L /usr/arm-linux-gnueabihf)

scripts/setup.sh --arm --bench
scripts/build.sh release -DTESSERA_BUILD_BENCHMARKS=ON -- tessera tessera_device instruction_counter
scripts/build.sh arm -DTESSERA_BUILD_BENCHMARKS=ON -- tessera tessera_device tessera_growth tessera_instructions

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
library=$PWD/build/arm/libtessera.so
arm-linux-gnueabihf-strip -o "$work/stripped.so" "$library"

readonly DEVICE=benchmarks/tessera_device
"${QEMU[@]}" -plugin build/release/benchmarks/libinstruction_counter.so build/arm/$DEVICE "$library" \
    > "$work/held.txt" 2> "$work/counted.txt"
sed -n 's/^instructions //p' "$work/counted.txt" > "$work/counts.txt"
"${QEMU[@]}" build/arm/$DEVICE "$library" 1000 > "$work/emulated.txt"
build/release/$DEVICE "$PWD/build/release/libtessera.so" 1000 > "$work/native.txt"

size() {
    local segments relocations
    # the shared segment comes first
    mapfile -t segments < <(arm-linux-gnueabihf-readelf --program-headers --wide "$library" | awk '$1 == "LOAD" {print $6}')
    relocations=$(arm-linux-gnueabihf-readelf --relocs "$library" | grep -c ' R_ARM_')
    echo '| of libtessera.so | bytes |'
    echo '| --- | --: |'
    echo "| the file, stripped | $(stat -c %s "$work/stripped.so") |"
    echo "| code and constants, which processes share | $((segments[0])) |"
    echo "| memory of each process: tables of pointers, variables | $((segments[1])) |"
    echo "| relocations, done when it is loaded (a number) | $relocations |"
}

steps() {
    echo '| step | instructions, ARM | µs, ARM under qemu-user | µs, x86-64 | heap kept, ARM | heap kept, x86-64 |'
    echo '| --- | --: | --: | --: | --: | --: |'
    paste <(grep -v '^held\|^start' "$work/held.txt") "$work/counts.txt" \
        <(grep -v '^held\|^start' "$work/emulated.txt") <(grep -v '^held\|^start' "$work/native.txt") |
        awk -F '\t' '{printf "| %s | %d | %.1f | %.1f | %d | %d |\n", $1, $4, $6 * 1e6, $9 * 1e6, $3, $10}'
}

held() {
    echo '| table of doubles | bytes, ARM | bytes, x86-64 |'
    echo '| --- | --: | --: |'
    paste <(grep '^held' "$work/emulated.txt") <(grep '^held' "$work/native.txt") |
        awk -F '\t' '{printf "| %s | %d | %d |\n", substr($1, 9), $3, $6}'
}

operations() {
    echo '| operation | reads | instructions, one row | instructions per row | working set, bytes per row |'
    echo '| --- | --- | --: | --: | --: |'
    "${QEMU[@]}" build/arm/benchmarks/tessera_instructions | while IFS=$'\t' read -r name what; do
        one=$(scripts/count-instructions.sh arm "$name" 1)
        many=$(scripts/count-instructions.sh arm "$name" $ROWS)
        "${QEMU[@]}" build/arm/benchmarks/tessera_growth "$name" $ROWS |
            awk -v what="$what" -v one="$one" -v many="$many" '{
                printf "| %s | %s | %d | %.1f | %.1f |\n", $1, what, one, many / $2, ($9 - $7 - $8) / $2
            }'
    done
}

{
    sed '/^<!-- figures -->$/q' $PAGE
    printf '\n## Size\n\n'
    size
    printf '\n## Loading, and a small table\n\n'
    steps
    printf '\n## Bytes that tables hold\n\n'
    held
    printf '\n## Operations\n\n'
    operations
} > "$work/device.md"
cp "$work/device.md" $PAGE
echo "$PAGE is written"

#!/usr/bin/env bash
# Names the files that clang-format would change.
#   scripts/check-format.sh [--fix]    the option changes them
set -euo pipefail
cd "$(dirname "$0")/.."

sources() {
    git ls-files -z --cached --others --exclude-standard '*.h' '*.hpp' '*.c' '*.cpp'
}

if [[ ${1:-} == --fix ]]; then
    sources | xargs -0 -r clang-format -i
    exit 0
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! sources | xargs -0 -r clang-format --dry-run --Werror > "$log" 2>&1; then
    grep -oE '^[^: ]+:[0-9]+:[0-9]+: error' "$log" | cut -d : -f 1 | uniq -c | sed 's/^/lines to change in/' >&2
    echo "scripts/check-format.sh --fix formats them" >&2
    exit 1
fi

#!/usr/bin/env bash
# Installs what is missing from Debian's packages: what a native build and its tests need, and more for the options.
# Silent when nothing is missing.
#   scripts/setup.sh [--arm] [--bench] [--compare] [--demo] [--docs] [--fuzz] [--coverage] [--ci]
set -euo pipefail

packages=(g++ cmake ninja-build ccache python3 pkg-config libgtest-dev libgmock-dev tzdata)
for option in "$@"; do
    case $option in
        --arm) packages+=(g++-arm-linux-gnueabihf qemu-user googletest) ;;
        --bench) packages+=(libbenchmark-dev valgrind gnuplot-nox) ;;
        --compare) packages+=(libbenchmark-dev gnuplot-nox python3-numpy python3-pandas python3-numexpr
            python3-bottleneck r-base-core r-cran-data.table)
            # Other packages of Node.js bring npm along, and refuse the company of Debian's.
            command -v node > /dev/null || packages+=(nodejs)
            command -v npm > /dev/null || packages+=(npm) ;;
        --demo) packages+=(gnuplot-nox) ;;
        --docs) packages+=(doxygen) ;;
        --fuzz) packages+=(clang libclang-rt-14-dev) ;;
        --coverage) packages+=(gcovr) ;;
        --ci) packages+=(g++-arm-linux-gnueabihf qemu-user googletest libbenchmark-dev
            git clang clang-format clang-tidy libclang-rt-14-dev doxygen gnuplot-nox abigail-tools valgrind) ;;
        *) sed -n 's/^#   /usage: /p' "$0" >&2; exit 2 ;;
    esac
done

if ! command -v apt-get > /dev/null; then
    echo "setup: this is no Debian system, so nothing was installed or checked. Needed are: ${packages[*]}" >&2
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    if [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null) != installed ]]; then
        missing+=("$package")
    fi
done
if ((${#missing[@]} == 0)); then
    exit 0
fi

asRoot=()
if ((EUID != 0)); then
    if ! command -v sudo > /dev/null; then
        echo "setup: as root, run: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    asRoot=(sudo)
fi
echo "setup: installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# A source of other packages that does not answer must not stand in the way, so only the installation decides.
"${asRoot[@]}" apt-get update -q > "$log" 2>&1 < /dev/null || true
if ! "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}" >> "$log" 2>&1 < /dev/null; then
    cat "$log" >&2
    echo "setup: installing failed" >&2
    exit 1
fi
echo "setup: done"

#!/usr/bin/env bash
# Holds the digests of all results against tests/digests/recorded.txt, for each compiler, optimisation and processor.
#   scripts/digests.sh [BUILD...]    of gcc-O0 gcc-O2 gcc-O3, clang-O0 ..., arm-O0 ...; all nine without a word
# A library is built for each, so all nine take a while. The tests of every change hold gcc -O2 and ARM -O2.
set -euo pipefail
cd "$(dirname "$0")/.."

builds=("$@")
(($# > 0)) || builds=({gcc,clang,arm}-{O0,O2,O3})
scripts/setup.sh --ci
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 GTEST_BRIEF=1

status=0
for build in "${builds[@]}"; do
    folder=build/digests/$build
    optimisation=${build#*-}
    run=()
    case $build in
        gcc-O?) choice=(-DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++) ;;
        clang-O?) choice=(-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++) ;;
        arm-O?)
            choice=(-DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake)
            run=(qemu-arm -L /usr/arm-linux-gnueabihf)
            ;;
        *) echo "digests: there is no build $build" >&2; exit 2 ;;
    esac
    cmake --preset release -B "$folder" "${choice[@]}" -DCMAKE_CXX_FLAGS_RELEASE="-$optimisation -DNDEBUG" \
        -DTESSERA_BUILD_EXAMPLES=OFF -DTESSERA_WERROR=OFF --log-level=WARNING > /dev/null
    NINJA_STATUS='' cmake --build "$folder" --target digests_tests -- --quiet
    rm -f "$folder/digests.txt"
    TESSERA_DIGEST_FILE=$folder/digests.txt "${run[@]}" "$folder/tests/digests_tests" > "$folder/log.txt" || true
    if diff <(sort tests/digests/recorded.txt) <(sort "$folder/digests.txt"); then
        echo "$build: $(wc -l < "$folder/digests.txt") digests, all as recorded"
    else
        echo "$build: the digests (>) differ from the recorded ones (<)" >&2
        status=1
    fi
done
exit $status

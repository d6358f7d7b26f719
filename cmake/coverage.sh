#!/usr/bin/env bash
# Builds everything with line counts, runs all tests, and prints which part of the lines they run, folder by folder.
# Fails where a test does, or where it is too few lines: cmake/coverage.sh [BUILD DIRECTORY]
set -euo pipefail
build=$(realpath -m "${1:-$(dirname "$0")/../build-coverage}")
cd "$(dirname "$0")/.."
export WAVEFORM_EXTRA_PACKAGES="gcovr"
. cmake/setup.sh
cmake --preset coverage -B "$build" >/dev/null
# A program that a test kills while it writes its counts spoils them, which all that run after it would tell on the
# console, where tests listen.
export GCOV_ERROR_FILE="$build/spoilt.log"
cmake --build "$build"
find "$build" -name '*.gcda' -delete # counts of earlier runs, and of the programs that were asked for their tests
rm -f "$GCOV_ERROR_FILE"
ctest --test-dir "$build" --output-on-failure --no-tests=error -j 2
if [ -s "$GCOV_ERROR_FILE" ]; then
    echo "These counts were spoilt when a test killed the program that wrote them, and tell too little:"
    grep -ao "$build/[^:]*[.]gcda" "$GCOV_ERROR_FILE" | sed "s,$build/,    ,; s,[.]gcda,," | sort -u
fi
cmake -D BUILD="$build" -P cmake/coverage.cmake

#!/usr/bin/env bash
# Builds everything with line counts, runs all tests, and prints which part of the lines they run, folder by folder.
# Fails where a test does, or where it is too few lines: cmake/coverage.sh [BUILD DIRECTORY]
set -euo pipefail
build=$(realpath -m "${1:-$(dirname "$0")/../build-coverage}")
cd "$(dirname "$0")/.."
export WAVEFORM_EXTRA_PACKAGES="gcovr"
. cmake/setup.sh
cmake --preset coverage -B "$build" >/dev/null
cmake --build "$build"
find "$build" -name '*.gcda' -delete # counts of earlier runs
ctest --test-dir "$build" --output-on-failure --no-tests=error -j 2
cmake -D BUILD="$build" -P cmake/coverage.cmake

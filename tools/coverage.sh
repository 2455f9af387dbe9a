#!/usr/bin/env bash
# Measures the line coverage of src/ by the tests: builds with coverage in a folder of its own
# (default build-coverage), runs the tests as the test command does, less the benchmark and
# the package test, and prints gcovr's summary (Debian's package gcovr).
#
#   bash tools/coverage.sh [DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-coverage}
# gcov finds each source by the path it was compiled with: a ccache base folder would make those
# paths relative to the compiler's working folder, where gcovr cannot find them.
export CCACHE_BASEDIR=
command -v gcovr >/dev/null || { echo "gcovr is missing: apt-get install gcovr" >&2; exit 1; }
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DVORLANE_COVERAGE=ON >/dev/null
cmake --build "$build" -j"$jobs" >/dev/null
find "$build" -name '*.gcda' -delete
QT_QPA_PLATFORM=offscreen ctest --test-dir "$build" -LE '^(bench|package)$' -j"$jobs" --timeout 600 \
  >"$build/coverage-tests.log" || echo "some tests failed: see $build/coverage-tests.log" >&2
gcovr --root . --filter 'src/' --exclude '.*_autogen/.*' --object-directory "$build" \
  --print-summary --txt "$build/coverage.txt" | tail -n 3

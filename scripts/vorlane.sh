#!/usr/bin/env bash
# Sets Vorlane up on a Debian 12 machine.
#   bash scripts/vorlane.sh run    install what is needed, build, create the database if none exists, start Vorlane
#   bash scripts/vorlane.sh test   install what is needed, build, run every test (also under the sanitizers)
#   bash scripts/vorlane.sh bench  install what is needed, build the benchmark, time the screens against
#                                  the sqlite3 shell at 100,000 and 1,000,000 documents
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev libqt6svg6
  libqt6sql6-sqlite libqt6sql6-odbc libsqlite3-dev unixodbc unixodbc-dev odbc-postgresql
  qt6-qpa-plugins fonts-dejavu-core fonts-liberation2
  libpoppler-qt6-dev libtesseract-dev tesseract-ocr-eng libquazip1-qt6-dev qt6-image-formats-plugins
)
# The tests also run against a PostgreSQL 15 server of their own (tests/support/pgserver.sh).
# The package test builds the Debian package, checks it with lintian and the validators of
# desktop entries and AppStream metadata, and installs it for a throwaway user.
# clang-tidy checks src/, and the sanitizer build is compiled by clazy (with clang's sanitizer
# runtime), which checks the code against Qt's own rules.
test_packages=(poppler-utils tesseract-ocr xvfb xauth clang-format clang-tidy clazy libclang-rt-14-dev sqlite3 postgresql
  dpkg-dev lintian desktop-file-utils appstream adduser passwd)
# The benchmark compares the program with the sqlite3 shell on the same file (and, with
# --server, with psql), and its reading of soft copies with pdftotext and tesseract.
bench_packages=(sqlite3 postgresql-client poppler-utils tesseract-ocr)

install_packages() {
  local missing=()
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
}

jobs=$(nproc 2>/dev/null || echo 2)

configure() { # configure <preset>
  cmake --preset "$1" >/dev/null
}

case "${1:-}" in
  run)
    install_packages "${packages[@]}"
    configure dev
    # Only the program, its set-up tool and its help: the tests are built by "test".
    cmake --build --preset program -j"$jobs"
    ./build/Vorlane/VorlaneSetup --if-missing
    exec ./build/Vorlane/Vorlane
    ;;
  test)
    install_packages "${packages[@]}" "${test_packages[@]}"
    configure ci
    cmake --build build --target format-check
    cmake --build --preset ci -j"$jobs"
    cmake --build build --target lint
    ctest --preset ci -j"$jobs"
    # Once more under AddressSanitizer, UndefinedBehaviorSanitizer and LeakSanitizer, compiled by
    # clazy: a finding of Qt's rules fails the build as a warning does.
    configure asan
    cmake --build --preset asan -j"$jobs"
    ctest --preset asan -j"$jobs"
    ;;
  bench)
    install_packages "${packages[@]}" "${bench_packages[@]}"
    configure ci
    cmake --build build --target vorlane_bench -j"$jobs"
    # The offices are made once under build/bench-data and used again by later runs.
    QT_QPA_PLATFORM=offscreen ./build/bench/vorlane_bench --rows 100000,1000000
    ;;
  *)
    echo "usage: bash scripts/vorlane.sh run|test|bench" >&2
    exit 2
    ;;
esac

#!/usr/bin/env bash
# Sets Vorlane up on a Debian 12 machine.
#   bash scripts/vorlane.sh run    install what is needed, build, create the database if none exists, start Vorlane
#   bash scripts/vorlane.sh test   install what is needed, build, run every test (also under the sanitizers)
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev libqt6svg6
  libqt6sql6-sqlite libqt6sql6-odbc libsqlite3-dev unixodbc unixodbc-dev
  qt6-qpa-plugins fonts-dejavu-core fonts-liberation2
)
test_packages=(poppler-utils xvfb xauth)

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

build() { # build <dir> [cmake options...]
  local dir=$1; shift
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORLANE_WERROR=ON "$@" >/dev/null
  cmake --build "$dir" -j"$jobs"
}

case "${1:-}" in
  run)
    install_packages "${packages[@]}"
    build build
    ./build/Vorlane/VorlaneSetup --if-missing
    exec ./build/Vorlane/Vorlane
    ;;
  test)
    install_packages "${packages[@]}" "${test_packages[@]}"
    build build
    QT_QPA_PLATFORM=offscreen ctest --test-dir build -j"$jobs" --output-on-failure
    # Once more under AddressSanitizer and UndefinedBehaviorSanitizer.
    build build-sanitize -DVORLANE_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
    ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
      QT_QPA_PLATFORM=offscreen ctest --test-dir build-sanitize -j"$jobs" --output-on-failure
    ;;
  *)
    echo "usage: bash scripts/vorlane.sh run|test" >&2
    exit 2
    ;;
esac

#!/usr/bin/env bash
# Makes each small fault of mutations.txt in src/ in turn, builds, runs the tests, and counts
# the faults that the tests catch (some test fails). The source is put back after each fault.
#
#   bash tools/mutation/check.sh [--build DIR] [--list FILE] [--only N[,N...]]
#
# DIR is a build folder of its own (default build-mutation), configured here without -Werror
# so that a fault that leaves an unused value still builds. The tests run as the test command
# runs them, less the benchmark and the package test; the server tests run against one server
# started here for the whole check. Results: DIR/mutation-results.txt, one line a fault.
set -uo pipefail
cd "$(dirname "$0")/../.."
top=$PWD

build=build-mutation
list=tools/mutation/mutations.txt
only=""
while [ $# -gt 0 ]; do
  case "$1" in
    --build) build=$2; shift 2 ;;
    --list) list=$2; shift 2 ;;
    --only) only=",$2,"; shift 2 ;;
    *) echo "usage: $0 [--build DIR] [--list FILE] [--only N,...]" >&2; exit 2 ;;
  esac
done
jobs=$(nproc 2>/dev/null || echo 2)

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORLANE_WERROR=OFF >/dev/null || exit 1
echo "Building without a fault..."
cmake --build "$build" -j"$jobs" >/dev/null || { echo "the unchanged source does not build" >&2; exit 1; }

# One server for every run, where the tests have one.
server=""
if grep -q '^VORLANE_SERVER_TESTS:.*=ON' "$build/CMakeCache.txt" 2>/dev/null; then
  pgctl=$(sed -n 's/^VORLANE_PG_CTL:FILEPATH=//p' "$build/CMakeCache.txt")
  driver=$(sed -n 's/^VORLANE_PSQLODBC:FILEPATH=//p' "$build/CMakeCache.txt")
  server="$top/$build/tests/server"
  sh tests/support/pgserver.sh start "$server" "$(dirname "$pgctl")" "$driver" >/dev/null || exit 1
fi

current=""
backup=""
restore() {
  if [ -n "$current" ]; then
    cp "$backup" "$current"
    current=""
  fi
}
finish() {
  restore
  [ -n "$server" ] && sh tests/support/pgserver.sh stop "$server" >/dev/null 2>&1
  rm -f "$backup"
}
trap finish EXIT
trap 'exit 130' INT TERM
backup=$(mktemp)

# Splits the list into one record a fault: file, what, the text and its replacement, the
# last two with their lines joined by newlines (escaped as \n for the shell).
entries=$(perl -e '
  my @e; my $cur;
  while (<>) {
    chomp;
    if (/^@ (\S+) \| (.*)$/) { $cur = {file => $1, what => $2, from => [], to => []}; push @e, $cur; next }
    next unless $cur;
    if (/^- (.*)$/) { push @{$cur->{from}}, $1 } elsif (/^\+ ?(.*)$/) { push @{$cur->{to}}, $1 }
  }
  for my $x (@e) {
    my $f = join("\n", @{$x->{from}}); my $t = join("\n", @{$x->{to}});
    $t = "" if $t =~ /^\s*$/;
    for ($f, $t) { s/\\/\\\\/g; s/\n/\\n/g; s/\t/\\t/g }
    print join("\t", $x->{file}, $x->{what}, $f, $t), "\n";
  }' "$list")

results="$build/mutation-results.txt"
: >"$results"
n=0
caught=0
missed=0
unbuilt=0
absent=0
while IFS=$'\t' read -r name what from to; do
  n=$((n + 1))
  [ -n "$only" ] && [[ "$only" != *",$n,"* ]] && continue
  file=$(git ls-files "src/*/$name" "src/$name" | head -n 1)
  if [ -z "$file" ]; then
    echo "$n absent   $name: $what (no such file)" | tee -a "$results"
    absent=$((absent + 1))
    continue
  fi
  count=$(FROM="$from" perl -0777 -ne 'my $f = $ENV{FROM}; $f =~ s/\\n/\n/g; $f =~ s/\\t/\t/g; $f =~ s/\\\\/\\/g; my $c = () = /\Q$f\E/g; print $c' "$file")
  if [ "$count" != 1 ]; then
    echo "$n absent   $file: $what (the text occurs $count times)" | tee -a "$results"
    absent=$((absent + 1))
    continue
  fi
  cp "$file" "$backup"
  current=$file
  FROM="$from" TO="$to" perl -0777 -i -pe 'my ($f, $t) = ($ENV{FROM}, $ENV{TO}); for ($f, $t) { s/\\n/\n/g; s/\\t/\t/g; s/\\\\/\\/g } s/\Q$f\E/$t/' "$file"
  if ! cmake --build "$build" -j"$jobs" >"$build/mutation-build.log" 2>&1; then
    echo "$n unbuilt  $file: $what" | tee -a "$results"
    unbuilt=$((unbuilt + 1))
    restore
    continue
  fi
  if ctest --test-dir "$build" -LE '^(bench|package)$' -FA pgserver --stop-on-failure -j"$jobs" \
    --timeout 300 >"$build/mutation-test.log" 2>&1; then
    echo "$n MISSED   $file: $what" | tee -a "$results"
    missed=$((missed + 1))
  else
    first=$(grep -m1 -E '\*\*\*(Failed|Timeout|Exception)|Failed  ' "$build/mutation-test.log" | sed -E 's/.*Test +#[0-9]+: ([^ ]+).*/\1/')
    echo "$n caught   $file: $what [$first]" | tee -a "$results"
    caught=$((caught + 1))
  fi
  restore
done <<<"$entries"

echo "faults: $n, caught: $caught, missed: $missed, not built: $unbuilt, not found: $absent" | tee -a "$results"

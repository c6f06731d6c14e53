#!/bin/sh
# Builds the platform-free logic and its tests natively with the compiler's counters, runs the tests
# and prints how many lines and branches they reach, per folder and for each file below a limit.
# usage: coverage.sh [PERCENT]    (files with fewer of their lines or branches reached are listed; 100)
set -eu
cd "$(dirname "$0")/.."
. scripts/steps.sh
limit=${1:-100}
build=build/coverage
tools=llvm-14
step coverage-packages scripts/install-packages.sh clang libclang-rt-14-dev googletest $tools

step configure-coverage cmake --preset coverage
step build-coverage cmake --build $build
rm -rf $build/profiles
# One file for each program, which its processes add to.
LLVM_PROFILE_FILE=$PWD/$build/profiles/%4m.profraw
export LLVM_PROFILE_FILE
step test-coverage ctest --test-dir $build --output-on-failure -j "$(nproc)"
unset LLVM_PROFILE_FILE
step coverage-merge llvm-profdata-14 merge -sparse -o $build/all.profdata $build/profiles

# What is no logic of ours: the tests and what serves them, the platform's stand-ins, other projects.
ignored='(_test\.cpp|_test_c\.c|_reference\.h|_fixture\.h|/fake_[a-z]*\.(h|cpp))$'
ignored="$ignored|runtime/(captured_log|temp_folder|guarded_text)\.h$|/tests/|^/usr/|/deps/|/cmake/"
set --
for program in $(find $build -name '*_test' -type f -perm -u+x); do
  set -- "$@" -object "$program"
done
llvm-cov-14 report -instr-profile $build/all.profdata -ignore-filename-regex "$ignored" "$@" \
  >$build/report.txt 2>$build/report.log

# A line of the report: name; regions, missed, share; functions, ...; lines, ...; branches, ...
awk -v limit="$limit" -v root="${PWD#/}/" '
  function share(all, missed) { return all == 0 ? 100 : 100 * (all - missed) / all }
  function row(name, lines, lost, branches, missed) {
    return sprintf("%-44s lines %6.2f %% of %5d   branches %6.2f %% of %5d", name,
                   share(lines, lost), lines, share(branches, missed), branches)
  }
  NF >= 13 && $8 ~ /^[0-9]+$/ && $1 != "TOTAL" {
    name = $1
    sub("^/?" root, "", name)
    gsub(/^(\.\.\/)+/, "", name)
    folder = name
    sub(/\/[^\/]*$/, "", folder)
    lines[folder] += $8; lost[folder] += $9; branches[folder] += $11; missed[folder] += $12
    if (share($8, $9) < limit || share($11, $12) < limit) print "  " row(name, $8, $9, $11, $12)
  }
  END {
    for (folder in lines) {
      print row(folder "/", lines[folder], lost[folder], branches[folder], missed[folder]) | "sort"
    }
  }' $build/report.txt
echo "line by line: llvm-cov-14 show -instr-profile $build/all.profdata PROGRAM FILE"

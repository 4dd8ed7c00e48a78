#!/bin/bash
# Every check and every test of Stelvane, one step after the other: ./test.sh
#   ./test.sh --list         names the steps
#   ./test.sh --only STEP    runs that step alone (may be repeated)
# It stops at the first step that fails, shows that step's log and exits with 1. The last line is
# the number of tests that passed and failed; a step that fails without a failed test counts as one.
set -u
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")" || exit 1
steps=(format words windows-x64 windows-x86 lint native-asan native-tsan native-bench fuzz)
results=build/log/results
passed=0
failed=0

usage() {
  sed -n '2,6s/^# \{0,1\}//p' "${BASH_SOURCE[0]}"
}

build() {
  tools/configure "$1" && tools/quietly "build/log/$1-build.log" cmake --build "build/$1"
}

# Builds a preset and runs its tests; CTest's report goes to the results folder to be counted.
buildAndTest() {
  build "$1" && tools/quietly "build/log/$1-test.log" ctest --preset "$1" --no-tests=error \
    --output-junit "$PWD/$results/$1.xml" --test-output-size-passed 10000000 \
    --test-output-size-failed 10000000
}

runStep() {
  case $1 in
    format) tools/check-format ;;
    words) tools/check-words ;;
    windows-x64) buildAndTest windows-x64 ;;
    windows-x86) buildAndTest windows-x86 ;;
    lint) build windows-x64 && tools/lint ;;
    # Building either of these is a check too: clang's warnings, and its analysis of the lock
    # annotations as errors.
    native-asan) buildAndTest native-asan ;;
    native-tsan) buildAndTest native-tsan ;;
    # That they run, not how fast.
    native-bench) buildAndTest native-bench ;;
    fuzz) build native-fuzz && tools/fuzz --minute ;;
  esac
}

# Runs a step and adds what its tests say to the totals.
announceStep() {
  local step=$1 start=$SECONDS ok=yes stepPassed=0 stepFailed=0 note="" tried=""
  printf '%-14s' "$step"
  runStep "$step" >build/log/step.log 2>&1 || ok=no
  if [ -f "$results/$step.xml" ]; then
    tools/count-tests "$results/$step.xml" >build/log/counts || echo 0 1 >build/log/counts
    read -r stepPassed stepFailed <build/log/counts
    note="  $stepPassed passed, $stepFailed failed"
    tried=$(tail -n +2 build/log/counts)
  else
    tried=$(sed -n 's/^in all /fuzz: /p' build/log/step.log)
  fi
  [ $ok = no ] && [ "$stepFailed" = 0 ] && stepFailed=1
  passed=$((passed + stepPassed))
  failed=$((failed + stepFailed))
  [ "$stepFailed" = 0 ] || ok=no
  if [ $ok = yes ]; then
    echo "ok      $((SECONDS - start)) s$note"
    [ "$tried" = "" ] || sed 's/^/                /' <<<"$tried"
    return 0
  fi
  echo "FAILED  $((SECONDS - start)) s$note"
  cat build/log/step.log
  return 1
}

chosen=()
while [ $# -gt 0 ]; do
  case $1 in
    --list) printf '%s\n' "${steps[@]}"; exit 0 ;;
    --only) chosen+=("${2-}"); shift ;;
    --help) usage; exit 0 ;;
    *) usage >&2; exit 2 ;;
  esac
  shift
done
[ ${#chosen[@]} -gt 0 ] || chosen=("${steps[@]}")
for step in "${chosen[@]}"; do
  if [[ " ${steps[*]} " != *" $step "* ]]; then
    echo "there is no step '$step'; ./test.sh --list names them" >&2
    exit 2
  fi
done

tools/install-packages || exit 1
rm -rf "$results"
mkdir -p "$results"
trap 'tools/wine-run --stop build/windows-x64' EXIT
for step in "${chosen[@]}"; do
  announceStep "$step" || break
done
echo "$passed passed, $failed failed"
[ "$failed" = 0 ]

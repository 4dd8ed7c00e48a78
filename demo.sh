#!/bin/bash
# Builds the driver and the workbench and runs the demo: ./demo.sh [options], ./demo.sh --help
# It works from any folder and exits with the demo's own exit code.
set -eu
root=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
build=$root/build/windows-x64

"$root/tools/install-packages"
[ -e "$build/workbench.exe" ] || echo "building; this takes some minutes the first time" >&2
(cd "$root" && tools/configure windows-x64)
"$root/tools/quietly" "$root/build/log/windows-x64-build.log" \
  cmake --build "$build" --target workbench tracedecode suplcheck

# Files of this machine are on drive Z: for the program.
arguments=()
for argument in "$@"; do
  case $argument in
    /*) argument=Z:$argument ;;
    --*=/*) argument=${argument%%=*}=Z:${argument#*=} ;;
  esac
  arguments+=("$argument")
done

trap '"$root/tools/wine-run" --stop "$build"' EXIT
"$root/tools/wine-run" "$build/workbench.exe" demo "${arguments[@]}"

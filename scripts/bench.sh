#!/bin/sh
# Runs every benchmark program of a build folder and the checks of their ratios.
set -eu
for program in "$1"/bench/*_bench; do
  echo "== $(basename "$program")"
  "$program"
done

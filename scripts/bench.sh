#!/bin/sh
# Runs every benchmark program of a build folder and the checks of their ratios.
set -eu
beyond=
for program in "$1"/bench/*_bench; do
  echo "== $(basename "$program")"
  "$program" || beyond="$beyond $(basename "$program")"
done
[ -z "$beyond" ] || {
  echo "beyond a limit:$beyond" >&2
  exit 1
}

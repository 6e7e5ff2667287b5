#!/bin/sh
# Configures and builds one preset; further words go to the build.
set -eu
preset=$1
shift
cmake --preset "$preset" >"build-$preset.log" 2>&1 || { cat "build-$preset.log"; rm -f "build-$preset.log"; exit 1; }
rm -f "build-$preset.log"
exec cmake --build --preset "$preset" -j "$(nproc)" "$@"

#!/bin/sh
# Configures and builds one preset.
set -eu
cmake --preset "$1" >"build-$1.log" 2>&1 || { cat "build-$1.log"; rm -f "build-$1.log"; exit 1; }
rm -f "build-$1.log"
exec cmake --build --preset "$1" -j "$(nproc)"

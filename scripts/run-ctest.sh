#!/bin/sh
# Runs the tests of a build folder; further words go to ctest. Many tests wait more than they compute, so there are twice
# as many at a time as processors.
set -eu
folder=$1
shift
exec ctest --test-dir "$folder" --output-on-failure --no-tests=error -j "$(($(nproc) * 2))" "$@"

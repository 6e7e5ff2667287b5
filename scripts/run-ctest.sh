#!/bin/sh
# Runs the tests of a build folder, two at a time; further words go to ctest.
set -eu
folder=$1
shift
exec ctest --test-dir "$folder" --output-on-failure --no-tests=error -j 2 "$@"

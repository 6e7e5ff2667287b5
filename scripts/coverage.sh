#!/bin/sh
# Runs all tests with executed lines counted, and shows for the module and the platform libraries what share of each
# file's lines ran and which did not. Fails below 95 % of all lines.
set -eu
cd "$(dirname "$0")/.."
scripts/build-preset.sh coverage
find build-coverage -name '*.gcda' -delete
scripts/run-ctest.sh build-coverage
# Where the product's own sources were compiled: what tests, simulator and host counted would only be read in vain.
# One word a folder is meant here.
# shellcheck disable=SC2046
exec gcovr --root . $(find build-coverage/class_modules build-coverage/platform -type d -path '*.dir/src') \
  --filter 'class_modules/[^/]*/src/' --filter 'platform/[^/]*/(src|include)/' -j "$(nproc)" --print-summary \
  --sort-uncovered --fail-under-line 95

#!/bin/sh
# Runs all tests with executed lines counted, and shows for the module and the platform libraries what share of each
# file's lines ran and which did not. Fails below 95 % of all lines.
set -eu
cd "$(dirname "$0")/.."
scripts/build-preset.sh coverage
find build-coverage -name '*.gcda' -delete
scripts/run-ctest.sh build-coverage
exec gcovr --root . --object-directory build-coverage --filter 'class_modules/[^/]*/src/' \
  --filter 'platform/[^/]*/(src|include)/' -j "$(nproc)" --print-summary --fail-under-line 95

#!/bin/sh
# Runs all tests with executed lines counted, and shows for the module and the platform libraries what did not run.
# Fails below 95 % of all lines.
set -eu
cd "$(dirname "$0")/.."
scripts/build-preset.sh coverage
find build-coverage -name '*.gcda' -delete
scripts/run-ctest.sh build-coverage
exec python3 scripts/coverage.py build-coverage 95

#!/bin/sh
# Builds one sanitizer preset and runs its tests.
set -eu
"$(dirname "$0")/build-preset.sh" "$1"
exec "$(dirname "$0")/run-ctest.sh" "build-$1"

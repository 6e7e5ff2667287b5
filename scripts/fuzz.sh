#!/bin/sh
# Runs each fuzz target for the given seconds, from its corpus; what it finds stays in build-fuzz/found.
set -eu
cd "$(dirname "$0")/.."
scripts/build-preset.sh fuzz --target fuzz_targets
mkdir -p build-fuzz/found
for target in build-fuzz/fuzz/*_fuzz; do
  name=$(basename "$target")
  mkdir -p "build-fuzz/corpus/$name"
  echo "== $name"
  "$target" -max_total_time="$1" -rss_limit_mb=2048 -timeout=10 -artifact_prefix=build-fuzz/found/ \
    "build-fuzz/corpus/$name" "fuzz/corpus/$name"
done

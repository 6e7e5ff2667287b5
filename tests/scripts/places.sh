#!/bin/sh
# The host's paths: a script is found from wherever one stands, and what is not there is said in one line.
#   places.sh FOLDER-OF-PROGRAMS
set -eu
programs=$(cd "$1" && pwd)
parent=/dev/shm
[ -w "$parent" ] || parent=${TMPDIR:-/tmp}
folder=$(mktemp -d "$parent/zqutil-places-XXXXXX")
script=$(mktemp /tmp/zqutil-places-XXXXXX.js)
trap 'rm -rf "$folder" "$script"' EXIT
echo 'print(new ZQUtil().isTablet());' >"$script"
cp "$script" "$folder/own.js"
mkdir "$folder/elsewhere"

# expect WHAT STATUS SAID COMMAND...: runs the command; status and all that it says must be these.
expect() {
  what=$1 status=$2 said=$3
  shift 3
  really=0
  answer=$("$@" 2>&1) || really=$?
  [ "$really" = "$status" ] && [ "$answer" = "$said" ] && return
  printf '%s\nexpected status %s: %s\ngot status %s: %s\n' "$what" "$status" "$said" "$really" "$answer" >&2
  exit 1
}
sorel="$programs/sorel"
device="$folder/device"

for place in / /tmp "$folder" "$folder/elsewhere"; do
  cd "$place"
  expect "a script below /tmp, from $place" 0 no "$sorel" --device "$device" "$script"
  expect "a script, from $place" 0 no "$sorel" --device "$device" "$folder/own.js"
  expect "a script that is missing, from $place" 1 "sorel: $folder/none.js: No such file or directory" \
    "$sorel" --device "$device" "$folder/none.js"
done
cd "$folder/elsewhere"
expect "a relative script" 0 no "$sorel" --device ../device ../own.js
cp "$script" "$device/etc/device.js"
expect "a script of the device's own" 0 no "$sorel" --device "$device" /etc/device.js

expect "a module that is missing" 1 \
  "sorel: $folder/M.so: cannot open shared object file: No such file or directory" \
  "$sorel" --module "$folder/M.so" "$script"

# The host without what it looks for beside itself.
mkdir -p "$folder/alone/bin" "$folder/alone/lib"
cp "$sorel" "$folder/alone/bin/"
ln -s "$programs"/../lib/libzqos.so* "$folder/alone/lib/"
alone="$folder/alone/bin/sorel"
expect "no simulator beside it" 1 "sorel: $folder/alone/bin/zqsim: No such file or directory" \
  "$alone" --device "$device" "$script"
expect "no module beside it" 1 \
  "sorel: $folder/alone/bin/../lib/ZQUtil.so: cannot open shared object file: No such file or directory" \
  "$alone" "$script"
expect "a device that cannot be made" 1 \
  "zqsim: /proc/none/device: cannot make the device: No such file or directory" \
  "$sorel" --device /proc/none/device "$script"
expect "a device that is a file" 1 "zqsim: $script: is no folder, so it cannot be a device" \
  "$sorel" --device "$script" "$script"

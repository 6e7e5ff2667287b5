#!/bin/sh
# Runs CASE.js with the module on a fresh simulated device, then CASE.after.js, where there is one, on the same device:
# what the first left must be there at the next start. A case fails by throwing. CASE.profile, where there is one, names
# the device's profile.
#   run.sh FOLDER-OF-PROGRAMS CASE [alone]
# "alone" leaves the device's system scripts out, for a case that asks the system for everything, a reboot too.
set -eu
programs=$1
case=$2
here=$(dirname "$0")
parent=/dev/shm
[ -w "$parent" ] || parent=${TMPDIR:-/tmp}
folder=$(mktemp -d "$parent/zqutil-script-XXXXXX")
trap 'rm -rf "$folder"' EXIT
if [ -f "$here/$case.profile" ]; then
  "$programs/zqsim" create "$folder/device" --profile "$(cat "$here/$case.profile")"
fi
for script in "$here/$case.js" "$here/$case.after.js"; do
  [ -f "$script" ] || continue
  status=0
  if [ "${3:-}" = alone ]; then
    "$programs/zqsim" run "$folder/device" -- "$programs/sorel" "$script" || status=$?
  else
    "$programs/sorel" --device "$folder/device" "$script" || status=$?
  fi
  if [ "$status" -ne 0 ]; then
    echo "$script: status $status" >&2
    exit 1
  fi
done

#!/bin/sh
# The example package on a simulated device, by the device's own steps: decrypt, unpack in /tmp, run with mode=1.
#   hello_update_test.sh FOLDER-OF-PROGRAMS
set -eu
programs=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
device=$folder/device

on_device() { "$programs/zqsim" run "$device" -- "$@"; }
fail() {
  echo "hello_update_test: $*" >&2
  exit 1
}

"$programs/zqsim" create "$device" >/dev/null
package=$("$root/tools/make-update" -o "$device/tmp" "$root/examples/packages/hello-update")
on_device nvram set update.done 0

on_device sh -c 'cd /tmp; sh ./run' 2>/dev/null && fail "no package, and yet it ran"
on_device sh -c "cd /tmp; tar zxf /tmp/${package##*/}; sh ./run mode=2" 2>/dev/null && fail "ran with mode=2"
[ "$(on_device nvram get update.done)" = 0 ] || fail "update.done changed without an installation"

said=$(on_device sh -c 'cd /tmp; sh ./run mode=1')
[ "$said" = 'hello-update: installed /updates/hello.txt' ] || fail "said: $said"
cmp "$root/examples/packages/hello-update/hello.txt" "$device/updates/hello.txt"
[ "$(on_device nvram get update.done)" = 1 ] || fail "update.done is not 1"

# A script that cannot put its file in place reports no success.
on_device nvram set update.done 0
rm -r "$device/updates"
on_device sh -c 'cd /tmp; sh ./run mode=1' >/dev/null 2>&1 && fail "ran without its target folder"
[ "$(on_device nvram get update.done)" = 0 ] || fail "update.done claims a failed installation"

#!/bin/sh
# Shows what a run left on a simulated device.
set -eu
device=$1
show() {
  [ -e "$device/$1" ] || return 0
  printf '\n%s\n' "$device/$1"
  sed 's/^/    /' "$device/$1"
  [ -z "$(tail -c 1 "$device/$1")" ] || echo
}
show zqutil.ini
for file in "$device"/*.ini; do
  case $file in
    */zqutil.ini | */\*.ini) ;;
    *) show "$(basename "$file")" ;;
  esac
done
show proc/blctrl
for file in "$device"/cache/*; do
  [ -f "$file" ] && show "cache/$(basename "$file")"
done
printf '\nkey store\n'
build/bin/zqsim run "$device" -- build/bin/nvram list | sed 's/^/    /'

#!/bin/sh
# What programs ask the system for, besides the network: the clock, updates, a reboot, a factory reset.
#   requests_test.sh FOLDER-OF-BUILD
set -u
build=$1
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/system/expect.sh
. "$here/expect.sh"
PATH=$build/bin:$PATH

device=$folder/device-0
# fresh: another device, with an empty key store and without waits.
fresh() {
  device=$folder/device-$((${device##*-} + 1))
  on nvram init
  mkdir -p "$device/etc/zq"
  printf '. "%s/share/zqutil/simulated-board.sh"\nSETTLE_SECONDS=0\nwait_ms() { :; }\n' "$build" > "$device/etc/zq/board.sh"
}
on() {
  zqsim run "$device" -- "$@"
}
# A system script by itself.
script() {
  on "$build/libexec/zqutil/$1" 2> "$folder/errors"
}
# file NAME: what it says; nothing when it is not there.
file() {
  cat "$device/$1" 2>/dev/null
}

### The clock
zones=$(readlink /etc/localtime)
before=$(date +%s)
fresh
printf 1 > "$device/tmp/do_time"
on nvram set sys.tz /usr/share/zoneinfo/Etc/UTC
script zq-time
same "the request is taken" '' "$(file tmp/do_time)"
same "the time zone is the device's" /usr/share/zoneinfo/Etc/UTC "$(on readlink /etc/localtime)"
same "network time from the usual servers" "[clock]
network_time = on
servers = 0.pool.ntp.org pool.ntp.org" "$(file hw/clock.ini)"
same "no word about it" '' "$(cat "$folder/errors")"

printf 112120302026 > "$device/etc/datetime"
on nvram set net.ntpenabled NO
on nvram set net.priNTP ntp.example
script zq-time
same "a moment set by hand, and no network time" "[clock]
network_time = off
servers =
set = 112120302026" "$(file hw/clock.ini | grep -v '^$')"
same "it counts once" gone "$([ -e "$device/etc/datetime" ] && echo there || echo gone)"
on nvram set net.ntpenabled YES
on nvram set net.secNTP '192.0.2.7'
script zq-time
same "servers of one's own" 'servers = ntp.example 192.0.2.7' "$(grep '^servers' "$device/hw/clock.ini")"

# shellcheck disable=SC2016
for bad in '' 12345678901 1234567890123 '11212030202x' '$(reboot) 12' '-s 123456789'; do
  printf %s "$bad" > "$device/etc/datetime"
  script zq-time
  same "no moment: $bad" "S12:112120302026" "S12:$(sed -n 's/^set = //p' "$device/hw/clock.ini")"
done
# shellcheck disable=SC2016
for bad in /etc/passwd /usr/share/zoneinfo/../../../etc/passwd /usr/share/zoneinfo/None 'x y' '-x' '/usr/share/zoneinfo/$(reboot)'; do
  on nvram set sys.tz "$bad"
  script zq-time
  same "no zone: $bad" /usr/share/zoneinfo/Etc/UTC "$(on readlink /etc/localtime)"
done
# shellcheck disable=SC2016
for bad in '-x' 'a b' '$(touch /tmp/bad)' ';reboot'; do
  on nvram set net.priNTP "$bad"
  script zq-time
  same "no server: $bad" 'servers = 0.pool.ntp.org 192.0.2.7' "$(grep '^servers' "$device/hw/clock.ini")"
done
same "nothing ran" '' "$(file tmp/bad)"
same "this machine's zone stays" "$zones" "$(readlink /etc/localtime)"
now=$(date +%s)
same "this machine's clock stays" yes "$([ "$now" -ge "$before" ] && [ "$now" -lt "$((before + 600))" ] && echo yes)"
on date -s '2001-01-01' > /dev/null 2>&1 && same "date sets no clock" refused "it was set"

### Updates
# package NAME SCRIPT
package() {
  mkdir -p "$folder/package"
  printf '%s\n' "$2" > "$folder/package/run"
  echo data > "$folder/package/file"
  tar -czf "$device/updates/$1" -C "$folder/package" .
}
fresh
# shellcheck disable=SC2016
package 'app-1.tgz' 'echo "$1 $(cat file) $(cat)" >> /etc/updated; nvram set sys.reboot no'
# shellcheck disable=SC2016
package 'app two.tgz' 'echo two >> /etc/updated'
package app-3.tgz 'echo three >> /etc/updated; exit 3'
package app-4.tgz 'echo four >> /etc/updated'
truncate -s 60 "$device/updates/app-4.tgz"
echo notes > "$device/updates/readme.txt"
tar -czf "$device/updates/app-5.tgz" -C "$folder/package" file
mkdir "$device/tmp/zq-update.old"
printf 1 > "$device/tmp/do_update"
script zq-update
same "each package's script ran, in its order, with nothing to read" "two${newline}mode=1 data ${newline}three" "$(file etc/updated)"
same "it reaches the key store" no "$(on nvram get sys.reboot)"
same "those that failed are set aside" "app-3.tgz.failed app-4.tgz.failed app-5.tgz.failed readme.txt" "$(cd "$device/updates" && echo *)"
same "the end is told, and nothing is left in /tmp" '' "$(ls "$device/tmp")"
printf 1 > "$device/tmp/do_update"
script zq-update
same "without a package the end is told, too" '' "$(ls "$device/tmp")"
same "what failed before is gone" "readme.txt" "$(cd "$device/updates" && echo *)"

### Reboot
# system SCRIPT: a shell with the system beside it; standard error goes to a file.
system() {
  zqsim run "$device" --system -- sh -c "$1" 2> "$folder/errors"
}
fresh
sed -i 's/^up = .*/up = no/; s/^cable = .*/cable = plugged/' "$device/hw/eth0.ini"
# The boot goes on beside the program.
# shellcheck disable=SC2016
answer=$(system 'if [ -e /etc/first ]; then
    ls /tmp
    looks=0
    until [ "$(cat /sys/class/net/eth0/operstate)" = up ] || [ $looks -eq 600 ]; do sleep 0.05; looks=$((looks + 1)); done
    cat /sys/class/net/eth0/operstate /etc/order
    exit 7
  fi
  : > /etc/first
  trap "echo in order > /etc/order; exit 0" TERM
  : > /tmp/forgotten
  printf 1 > /tmp/reboot
  while :; do sleep 0.05; done')
same "the status of the last run" 7 $?
same "after a reboot /tmp is empty but for the boot's, the network comes up, the program had ended in order" "up${newline}in order" \
  "$(printf %s "$answer" | grep -v done_S12)"
same "it is told" 'zqsim: the device reboots' "$(cat "$folder/errors")"

fresh
# shellcheck disable=SC2016
system '[ -e /etc/first ] && exit 8; : > /etc/first; printf 1 > /tmp/reboot; exit 9'
same "a program that asks for a reboot and ends at once" 8 $?
fresh
# shellcheck disable=SC2016
system '[ -e /etc/first ] && exit 8; : > /etc/first; trap "" TERM; printf 1 > /tmp/reboot; while :; do sleep 0.05; done'
same "one that does not end is ended" 8 $?
fresh
system 'echo x >> /etc/count; printf 1 > /tmp/reboot; sleep 60'
same "one that always asks" 1 $?
same "nothing that it started runs on" '' "$(grep -lzF "ZQ_DEVICE=$device" /proc/[0-9]*/environ 2>/dev/null)"
same "has eleven runs" 11 "$(wc -l < "$device/etc/count")"
same "and it is told" 'zqsim: ended after 10 new starts' "$(tail -n 1 "$folder/errors")"

### Factory reset
fresh
for pair in net.wifi=YES net.essid=mine net.proxy=p sys.tz=/x sys.reboot=no sys.bldrver=0 sys.numparts=4 sys.activerfs=a \
  sys.standbyrfs=b update.done=0 upack.key=1 network=kept "net.key=two${newline}lines"; do
  on nvram set "${pair%%=*}" "${pair#*=}"
done
for name in zqutil clock 'a b' zqapplog; do echo "[config]" > "$device/$name.ini"; done
echo x > "$device/cache/thing"
printf 1 > "$device/etc/datetime"
# shellcheck disable=SC2016
system '[ -e /etc/first ] && exit 6; : > /etc/first; printf 1 > /tmp/factory_reset; sleep 60'
same "the device reboots" 6 $?
same "the user's keys are gone" "network=kept
sys.activerfs=a
sys.bldrver=0
sys.numparts=4
sys.standbyrfs=b
upack.key=1
update.done=0" "$(on nvram list)"
same "so are settings and cache" "zqapplog.ini" "$(cd "$device" && echo *.ini)$(ls "$device/cache")"
same "and a moment set by hand" '' "$(file etc/datetime)"

### A host that is started again
supervised() {
  zqsim run "$device" --supervised -- sh -c "$1" 2> "$folder/errors"
}
fresh
# shellcheck disable=SC2016
supervised 'echo x >> /etc/count; [ "$(wc -l < /etc/count)" -lt 3 ] || exit 4; : > "/tmp/$(wc -l < /etc/count)"'
same "status 0 is a new start" "4 3" "$? $(wc -l < "$device/etc/count")"
same "which is no reboot" "1${newline}2" "$(ls "$device/tmp")"
fresh
supervised 'echo x >> /etc/count'
same "but not for ever" "1 11" "$? $(wc -l < "$device/etc/count")"

exit "$failed"

#!/bin/sh
# The system's scripts beside a program: they begin and end with it.  system_side_test.sh FOLDER-OF-BUILD
set -u
build=$1
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/system/expect.sh
. "$here/expect.sh"
PATH=$build/bin:$PATH
device=$folder/device

# Processes of the device, whatever they are.
# shellcheck disable=SC2317
processes() {
  for each in /proc/[0-9]*; do
    { grep -qzF "ZQ_DEVICE=$device" "$each/environ" || grep -qzF "$device" "$each/cmdline"; } 2>/dev/null && echo "${each#/proc/}"
  done
}
# shellcheck disable=SC2317
none_left() {
  [ -z "$(processes)" ]
}
# run OPTIONS... -- WORDS...
run() {
  zqsim run "$device" "$@"
}
# system SCRIPT: a shell with the system's scripts beside it.
system() {
  run --system -- sh -c "$1"
}

run -- nvram init
# No wait that belongs to the network alone.
mkdir -p "$device/etc/zq"
printf '. "%s/share/zqutil/simulated-board.sh"\nSETTLE_SECONDS=0\n' "$build" > "$device/etc/zq/board.sh"
# shellcheck disable=SC2016
await_file='until_there() { i=0; until [ -e "$1" ]; do i=$((i + 1)); [ $i -lt 600 ] || exit 9; sleep 0.05; done; }
            until_gone() { i=0; while [ -e "$1" ]; do i=$((i + 1)); [ $i -lt 600 ] || exit 9; sleep 0.05; done; }'

sed -i 's/^cable = .*/cable = plugged/; s/^delay_ms = .*/delay_ms = 0/' "$device/hw/eth0.ini"
answer=$(system "$await_file; printf 1 > /tmp/do_S12; until_there /tmp/done_S12; cat /sys/class/net/eth0/operstate; ls /tmp")
same "a request for the network is served" "up${newline}done_S12" "$answer"
same "nothing runs on" '' "$(processes)"
rm -f "$device/tmp/done_S12"

answer=$(run -- sh -c 'printf 1 > /tmp/do_S12; sleep 0.5; ls /tmp')
same "without the system a request stays" do_S12 "$answer"
answer=$(system "$await_file; until_there /tmp/done_S12; ls /tmp")
same "one that was there before is served" done_S12 "$answer"

# Two programs with the system beside them: one system acts, and the other takes its place when it has ended.
rm -f "$device/tmp/done_S12"
cp "$device/etc/zq/board.sh" "$folder/board.sh"
echo 'wait_ms() { log asked; }' >> "$device/etc/zq/board.sh"
system "$await_file; : > /tmp/first; until_there /tmp/over" 2>>"$folder/said" &
first=$!
system "$await_file
  until_there /tmp/first; printf 1 > /tmp/do_S12; until_there /tmp/done_S12; rm /tmp/done_S12
  until_there /tmp/told; : > /tmp/over; until_there /tmp/ended
  printf 1 > /tmp/do_S12; until_there /tmp/done_S12; rm /tmp/done_S12" 2>>"$folder/said" &
second=$!
# By the one that waits, once it has waited for a while: a program that has just ended is no other program.
# shellcheck disable=SC2317
told() { grep -q 'its system acts for both' "$folder/said"; }
await 60 told || same "one of them says that it waits" said silent
: > "$device/tmp/told"
wait "$first"
: > "$device/tmp/ended"
wait "$second"
same "each of two programs is served" 0 $?
same "each request is served once" 2 "$(grep -c 'S12network: asked' "$device/var/log/zq-system.log")"
same "one of them says so" 1 "$(grep -c 'its system acts for both' "$folder/said")"
rm -f "$device/tmp/first" "$device/tmp/told" "$device/tmp/over" "$device/tmp/ended"
mv "$folder/board.sh" "$device/etc/zq/board.sh"

# Asked again while it is at work, the network is restarted again, and each end is told. An answer of the cable's other
# end takes until it is allowed.
cp "$device/etc/zq/board.sh" "$folder/board.sh"
echo 'wait_ms() { until [ -e /tmp/answer ]; do sleep 0.05; done; rm /tmp/answer; }' >> "$device/etc/zq/board.sh"
rm -f "$device/tmp/done_S12"
system "$await_file
  printf 1 > /tmp/do_S12; until_gone /tmp/do_S12
  printf 1 > /tmp/do_S12; : > /tmp/answer; until_there /tmp/done_S12; rm /tmp/done_S12; until_gone /tmp/do_S12
  : > /tmp/answer; until_there /tmp/done_S12; rm /tmp/done_S12
  ! [ -e /tmp/do_S12 ]"
same "a request while one is served is served after it" 0 $?
cp "$folder/board.sh" "$device/etc/zq/board.sh"

for status in 0 1 9 127; do
  system "exit $status"
  same "the program's status" "$status" $?
done
# shellcheck disable=SC2016
sh -c 'zqsim run "$0" --system -- sh -c '\''kill -9 $$'\''; echo $?' "$device" > "$folder/said" 2>/dev/null
same "a signal's end" 137 "$(cat "$folder/said")"
await 60 none_left || same "after the program was killed" '' "$(processes)"
run --system -- no-such-program 2>/dev/null
same "no such program" 127 $?

same "input and output are the program's" "given${newline}out" "$(printf 'given\n' | run --system -- sh -c 'cat; echo out' 2>&1)"
# A pipe ends with the program: nobody beside it holds it.
same "the program's output ends with it" out "$(system 'echo out; exec 1>&-')"

# Killed itself, zqsim takes all with it.
zqsim run "$device" --system -- sleep 1000 &
zqsim=$!
# shellcheck disable=SC2317
several() { [ "$(processes | wc -l)" -ge 4 ]; }
await 60 several || same "zqsim, its keeper, the scripts and the program" 4 "$(processes | wc -l)"
kill -9 "$zqsim"
wait "$zqsim" 2>/dev/null
await 60 none_left || same "after zqsim was killed" '' "$(processes)"

# Signals are the program's.
# shellcheck disable=SC2016
for signal in TERM INT HUP USR1; do
  rm -f "$device/tmp/ready"
  # A shell starts what is in the background deaf to SIGINT: env is asked to undo that.
  env --default-signal=INT zqsim run "$device" --system -- sh -c "trap 'echo $signal > /tmp/heard; exit 5' $signal; : > /tmp/ready; while :; do sleep 0.05; done" &
  zqsim=$!
  await 60 test -e "$device/tmp/ready"
  kill -s "$signal" "$zqsim"
  wait "$zqsim"
  same "its end after $signal" 5 $?
  same "what it heard" "$signal" "$(cat "$device/tmp/heard")"
done
same "nothing is left at the end" '' "$(processes)"

exit "$failed"

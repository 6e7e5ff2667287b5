#!/bin/sh
# A script sets the network up, and hears how the device comes up: module, host, system scripts and simulated device
# together.  connectivity_test.sh FOLDER-OF-BUILD
set -u
build=$1
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/system/expect.sh
. "$here/expect.sh"

# hears NAME CALL EDIT WANTED: on a fresh device that sed has edited, the call is made, and the listener hears that.
hears() {
  device=$folder/$1
  "$build/bin/zqsim" create "$device"
  # Nobody listens there: the check fails at once.
  printf '[config]\nhost = 127.0.0.1\nsslport = 1\n' > "$device/zqapplog.ini"
  sed -i "$3" "$device/hw/eth0.ini" "$device/hw/ra0/link.ini"
  { cat "$here/connectivity.js" && printf '%s\n' "$2"; } > "$folder/$1.js"
  said=$("$build/bin/sorel" --device "$device" "$folder/$1.js" 2> "$folder/errors" < /dev/null | grep -v '^Checking')
  same "$1" "$4" "$said"
}

# A second to spare for a slow machine in each wait.
# The longest beside the others.
(
  hears radio "util.setWirelessNetworkDHCP('Lindenhof', 'WPA2PSK', 'AES', 'WPA', 'quittenbaum', 0, 'WPA2');" 's/^delay_ms = .*/delay_ms = 3000/' \
  'onAssociation onBeginDHCP onDoneDHCP onBeginConnectivityCheck onConnectFailure
192.0.2.58 255.255.255.0 192.0.2.1 192.0.2.1'
  exit "$failed"
) &
one=$!
hears wrong-key "util.setWirelessNetworkDHCP('Lindenhof', 'WPA2PSK', 'AES', 'WPA', 'another one', 0, 'WPA2');" '' \
  "onFailedAssociation
  0.0.0.0 "
hears cable 'util.setWiredNetworkDHCP();' 's/^cable = .*/cable = plugged/; s/^delay_ms = .*/delay_ms = 3000/' \
  'onBeginDHCP onDoneDHCP onBeginConnectivityCheck onConnectFailure
192.0.2.57 255.255.255.0 192.0.2.1 192.0.2.1'
hears no-cable 'util.setWiredNetworkDHCP();' '' "onBeginDHCP onFailedAssociation
  0.0.0.0 "
hears static "util.setWiredNetworkStatic('192.0.2.9', '255.255.255.128', '198.51.100.1', '', '192.0.2.2');" 's/^cable = .*/cable = plugged/' \
  'onBeginConnectivityCheck onConnectFailure
192.0.2.9 255.255.255.128 192.0.2.2 198.51.100.1'
wait "$one" || failed=1

exit "$failed"

#!/bin/sh
# The system's own tools find the networks in the air: iwlist_test.sh ZQSIM
set -eu
zqsim=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
device=$work/device
"$zqsim" create "$device" --profile bare
mkdir -p "$device/hw/ra0"
cat > "$device/hw/ra0/cells.ini" <<'CELLS'
[Haus am See]
security = wpa2
level = 206
quality = 92
channel = 36
[hidden]
hidden = yes
mode = ad-hoc
security = wep
[Café]
security = mixed
address = 02:11:22:33:44:55
channel = 14
CELLS

expected=$work/expected
cat > "$expected" <<'SCAN'
ra0       Scan completed :
          Cell 01 - Address: 02:00:00:00:C0:01
                    ESSID:"Haus am See"
                    Frequency:5.18 GHz
                    Mode:Master
                    Encryption key:on
                    Quality=92/100  Signal level=-50 dBm
                    IE: IEEE 802.11i/WPA2 Version 1
                        Group Cipher : CCMP
                        Pairwise Ciphers (1) : CCMP
                        Authentication Suites (1) : PSK
          Cell 02 - Address: 02:00:00:00:C0:02
                    ESSID:off/any/hidden
                    Frequency:2.437 GHz
                    Mode:Ad-Hoc
                    Encryption key:on
                    Quality=50/100  Signal level=-76 dBm
          Cell 03 - Address: 02:11:22:33:44:55
                    ESSID:"Caf\xC3\xA9"
                    Frequency:2.484 GHz
                    Mode:Master
                    Encryption key:on
                    Quality=50/100  Signal level=-76 dBm
                    IE: IEEE 802.11i/WPA2 Version 1
                        Group Cipher : TKIP
                        Pairwise Ciphers (2) : CCMP TKIP
                        Authentication Suites (1) : PSK
                    IE: WPA Version 1
                        Group Cipher : TKIP
                        Pairwise Ciphers (2) : CCMP TKIP
                        Authentication Suites (1) : PSK

SCAN

for layout in 64 32; do
  printf '[driver]\nlayout = %s\n' $layout > "$device/hw/ra0/link.ini"
  "$zqsim" run "$device" -- /sbin/iwlist ra0 scan | sed 's/ *$//' > "$work/found"
  diff -u "$expected" "$work/found"
done

rm "$device/hw/ra0/link.ini"
"$zqsim" run "$device" -- /sbin/iwlist ra0 scan 2>&1 | grep -q "Interface doesn't support scanning"

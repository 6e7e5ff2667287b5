#!/bin/sh
# The network script on simulated devices.  network_test.sh FOLDER-OF-BUILD
set -u
build=$1
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/system/expect.sh
. "$here/expect.sh"

# Everything at once: the waits are tested where they matter.
cat > "$folder/board.sh" <<EOF
. "$build/share/zqutil/simulated-board.sh"
SETTLE_SECONDS=0
wait_ms() { :; }
EOF

device=
# fresh: another device, with an empty key store.
fresh() {
  device=$folder/device-$((${device##*-} + 1))
  on nvram init
}
device=$folder/device-0
# on WORDS...: runs a program on the device.
on() {
  ZQ_BOARD=$folder/board.sh PATH=$build/bin:$PATH "$build/bin/zqsim" run "$device" -- "$@"
}
# keys KEY VALUE ...
keys() {
  while [ $# -gt 0 ]; do
    on nvram set "$1" "$2"
    shift 2
  done
}
restart() {
  rm -f "$device/tmp/done_S12"
  printf 1 > "$device/tmp/do_S12"
  on "$build/libexec/zqutil/S12network" 2> "$folder/errors"
  same "the request is taken" gone "$([ -e "$device/tmp/do_S12" ] && echo there || echo gone)"
  same "the end is told" 1 "$(cat "$device/tmp/done_S12")"
}
# What programs see: both links, routes as IFACE DESTINATION GATEWAY, name servers, one a line.
state() {
  # shellcheck disable=SC2016
  on sh -c '
    for each in eth0 ra0; do
      [ -d "/sys/class/net/$each" ] && echo "$each $(cat "/sys/class/net/$each/operstate")"
    done
    tail -n +2 /proc/net/route | cut -f 1-3 | tr "\t" " "
    cat /etc/resolv.conf'
}
edit() {
  sed -i "$2" "$device/$1"
}
errors() {
  cat "$folder/errors"
}
plug() {
  edit hw/eth0.ini 's/^cable = .*/cable = plugged/'
}

wired='eth0 up
ra0 down
eth0 00000000 010200C0
eth0 000200C0 00000000
nameserver 192.0.2.1'
joined='eth0 down
ra0 up
ra0 00000000 010200C0
ra0 000200C0 00000000
nameserver 192.0.2.1'
nothing='eth0 down
ra0 down'

fresh
plug
restart
same "without a key: wired, by DHCP" "$wired" "$(state)"
same "no word about it" '' "$(errors)"
same "its address" 'ip = 192.0.2.57' "$(grep '^ip = ' "$device/hw/eth0.ini" | head -n 1)"

edit hw/eth0.ini 's/^dns = .*/dns = 192.0.2.1 2001:db8::1 evil;reboot/; s/^ip = 192.*/ip = 10.1.2.3/; s/^netmask = 2.*/netmask = 255.0.0.0/; s/^gateway = 1.*/gateway = 10.0.0.1/'
restart
same "another answer of the DHCP server" "eth0 up
ra0 down
eth0 00000000 0100000A
eth0 0000000A 00000000
nameserver 192.0.2.1
nameserver 2001:db8::1" "$(state)"
same "what is no name server" 'S12network: no name server: evil;reboot' "$(errors)"

edit hw/eth0.ini 's/^cable = .*/cable = unplugged/'
restart
same "without a cable nothing of before is left" "$nothing" "$(state)"
same "it says so" 'S12network: eth0: not connected' "$(errors)"

plug
edit hw/eth0.ini 's/^answers = .*/answers = no/'
restart
same "without a DHCP server the link is up alone" "eth0 up${newline}ra0 down" "$(state)"

keys net.dhcp NO net.wifi NO net.ipaddr 192.168.1.57 net.netmask 255.255.0.0 net.gateway 192.168.1.1 net.ns 1.2.3.4,5.6.7.8
keys net.proxy 10.0.0.1:8080 net.proxyen TRUE
restart
static='eth0 up
ra0 down
eth0 00000000 0101A8C0
eth0 0000A8C0 00000000
nameserver 1.2.3.4
nameserver 5.6.7.8'
same "a static address" "$static" "$(state)"
same "the proxy is not the script's" "TRUE 10.0.0.1:8080" "$(on nvram get net.proxyen) $(on nvram get net.proxy)"
keys net.ns ,5.6.7.8
restart
same "a second name server alone" "nameserver 5.6.7.8" "$(state | grep nameserver)"
keys net.ns '' net.gateway ''
restart
same "neither gateway nor name server" "eth0 up
ra0 down
eth0 0000A8C0 00000000" "$(state)"
keys net.netmask nonsense
restart
same "a mask that is none" "eth0 up
ra0 down
eth0 0001A8C0 00000000" "$(state)"
# shellcheck disable=SC2016
for bad in '' nonsense '1.2.3' '-4' '1.2.3.4; touch /tmp/bad' '$(touch /tmp/bad)' "1.2.3.4${newline}5.6.7.8"; do
  keys net.ipaddr "$bad"
  restart
  same "an address that is none: $bad" "eth0 up${newline}ra0 down" "$(state)"
done
same "no value runs" '' "$(ls -d "$device"/tmp/bad 2>/dev/null)"

# While the answer is awaited the radio has an address that needs no server.
cat >> "$folder/board.sh" <<EOF
wait_ms() { cp "\$hw/ra0/link.ini" "$folder/meanwhile"; }
EOF

# wifi NAME KEY: keys of a network by DHCP.
wifi() {
  keys net.wifi YES net.dhcp YES net.essid "$1" net.key "$2" net.authtype WPA2PSK net.enctype AES
}
fresh
wifi Lindenhof quittenbaum
restart
same "joins a network that is in the air" "$joined" "$(state)"
same "which has an address of its own meanwhile" "associated = yes
ip = 169.254.17.1
netmask = 255.255.0.0" "$(sed '/^.dhcp/q' "$folder/meanwhile" | grep -e '^associated' -e '^ip' -e '^netmask')"
same "and says which" 'essid = Lindenhof' "$(grep '^essid' "$device/hw/ra0/link.ini")"
edit hw/ra0/link.ini 's/^answers = .*/answers = no/'
restart
same "without an answer it has none" "eth0 down${newline}ra0 up" "$(state)"
edit hw/ra0/link.ini 's/^answers = .*/answers = yes/'
wifi Lindenhof wrong-one
restart
same "not with another key" "$nothing" "$(state)"
same "and says so" 'S12network: ra0: the key of Lindenhof is another
S12network: ra0: cannot join Lindenhof
S12network: ra0: not connected' "$(errors)"
same "it has left the network of before" 'associated = no essid =' "$(grep -e '^associated' -e '^essid' "$device/hw/ra0/link.ini" | tr '\n' ' ' | sed 's/ $//')"
wifi lindenhof quittenbaum
restart
same "names count by their letters" "$nothing" "$(state)"
wifi 'Cafe Anna' ''
restart
same "an open network" "$joined" "$(state)"
keys net.dhcp no net.ipaddr 192.168.1.57 net.netmask 255.255.255.0 net.gateway 192.168.1.1 net.ns 9.9.9.9
restart
same "a static address in the air" "eth0 down
ra0 up
ra0 00000000 0101A8C0
ra0 0001A8C0 00000000
nameserver 9.9.9.9" "$(state)"
plug
keys net.wifi NO net.dhcp YES
restart
same "back to the cable" "$wired" "$(state)"

# Names and keys that mean something to a shell, to awk, to printf, to a settings file.
: > "$device/hw/ra0/cells.ini"
high=$(printf 'caf\351 \377')
# shellcheck disable=SC2016
for name in 'a b' '$(touch /tmp/bad)' '`touch /tmp/bad`' "a'b" 'a"b' 'a\b\n' '%s%n&' '-n' '[x]' '; x' '# x' 'a = b' ' x ' '*' \
  "$high" "a${newline}[b]${newline}c = d" 'é' '12345678901234567890123456789012'; do
  key="key of $name"
  case $name in *"$newline"*) key='key in one line' ;; esac
  printf '[cell]\nname_hex = %s\npassword = %s\n' "$(printf %s "$name" | od -An -v -tx1 | tr -d ' \n')" "$key" > "$device/hw/ra0/cells.ini"
  case $name in ' x ') key=${key% } && sed -i 's/ $//' "$device/hw/ra0/cells.ini" ;; esac
  wifi "$name" "$key"
  restart
  same "joins '$name'" "$joined" "$(state)"
done
same "no name runs" '' "$(ls -d "$device"/tmp/bad 2>/dev/null)"

fresh
rm "$device/hw/ra0/link.ini"
wifi Lindenhof quittenbaum
restart
same "without a radio" "$nothing" "$(state)"
same "which does not come back by that" cells.ini "$(ls "$device/hw/ra0")"
same "and says so, too" 'S12network: there is no ra0' "$(errors)"

fresh
rm "$device/var/lib/zq/nvram0" "$device/var/lib/zq/nvram1"
plug
restart
same "without a key store: as without keys" "$wired" "$(state)"

exit "$failed"

#!/bin/sh
# The network script on interfaces of the kernel, eth0 and ra0, with the kernel's routes, iproute2, and a real DHCP client and
# server, in a network of the test's own.  real_network_test.sh FOLDER-OF-BUILD
set -u
here=$(cd "$(dirname "$0")" && pwd)
if [ "${2:-}" != inside ]; then
  for each in ip:iproute2 busybox:busybox dhclient:isc-dhcp-client; do
    command -v "${each%:*}" >/dev/null || {
      echo "no ${each%:*}: install the package ${each#*:}"
      exit 1
    }
  done
  unshare --net --mount true 2>/dev/null || {
    echo "no network of the test's own (unshare --net --mount): needs CAP_SYS_ADMIN; run as root, in a container with --cap-add SYS_ADMIN, in a chroot whose root is a mount point (mount --rbind ROOT ROOT)"
    exit 1
  }
  exec unshare --net --mount --fork --pid --kill-child "$0" "$1" inside
fi
# Where there is no room in memory, a folder that is not below /tmp, which is another here.
TMPDIR=/var/tmp
# shellcheck source=tests/system/expect.sh
. "$here/expect.sh"
# Below /dev the store's copies would have to be there.
store=$(mktemp -d /var/tmp/zqutil-system-XXXXXX) || exit 1
# The build is shown in the folder, and must not go with it, however the test ends.
# shellcheck disable=SC2317
clear_away() {
  cd /
  umount -l "$folder/build" 2>/dev/null
  rm -rf --one-file-system "$folder" "$store"
}
trap clear_away EXIT

# /etc, /tmp, /sys and the names of networks are this namespace's own; what is below /tmp otherwise is seen elsewhere.
mount --make-rprivate /
scripts=$folder/scripts
cp -RL "$1/libexec/zqutil" "$scripts"
mkdir "$folder/build"
mount -o bind,ro "$1" "$folder/build" || exit 1
mount -t sysfs sysfs /sys
mkdir -p /run/netns
mount -t tmpfs tmpfs /run/netns || exit 1
mkdir -p "$folder/bin" "$folder/run" "$folder/tmp"
cp -a /etc "$folder/etc"
mount --bind "$folder/etc" /etc || exit 1
rm -f /etc/resolv.conf
mount -t proc proc /proc
ln -s "$folder/build/bin/nvram" "$folder/bin/nvram"
ln -s "$(command -v busybox)" "$folder/bin/udhcpc"
ln -s "$(command -v busybox)" "$folder/bin/udhcpd"
export PATH="$folder/bin:$PATH" ZQ_NVRAM_CONFIG="$folder/fw_env.config" ZQ_BOARD="$folder/board.sh"
printf '%s 0 0x4000\n%s 0 0x4000\n' "$store/a" "$store/b" > "$ZQ_NVRAM_CONFIG"
nvram init
cat > "$ZQ_BOARD" <<EOF
RUN_DIR=$folder/run
SETTLE_SECONDS=0
# As long as it takes on a slow machine; shorter where nobody answers.
DHCP_SECONDS=60
DHCP_PAUSE_SECONDS=1
JOIN_SECONDS=60
EOF
# In place of the radio's: notes what it is to join.
cat > "$folder/bin/wpa_supplicant" <<EOF
#!/bin/sh
cat "\$5" > "$folder/joined"
EOF
chmod +x "$folder/bin/wpa_supplicant"

# The other ends are in a network behind the first.
ip netns add there || exit 1
ip link set lo up
ip link add eth0 type veth peer name far netns there
ip -n there addr add 192.0.2.1/24 dev far
ip -n there link set far up
ip link add ra0 type veth peer name radio netns there
ip -n there link set radio up

# The kernel tells in a moment of its own that an interface with a carrier is up.
# shellcheck disable=SC2317
links_are_told() {
  for each in eth0 ra0; do
    [ "$(cat "/sys/class/net/$each/carrier" 2>/dev/null)" != 1 ] || [ "$(cat "/sys/class/net/$each/operstate")" = up ] || return 1
  done
}
# state: both interfaces with their addresses, default routes, name servers.
state() {
  await 20 links_are_told
  for each in eth0 ra0; do
    echo "$each $(cat "/sys/class/net/$each/operstate")$(ip -4 -o addr show dev "$each" | sed -n 's/.*inet \([^ ]*\).*/ \1/p')"
  done
  ip -4 route show default | sed 's/ *$//'
  cat /etc/resolv.conf
}
restart() {
  printf 1 > /tmp/do_S12
  "$scripts/S12network" 2> "$folder/errors"
  same "the request is taken" gone "$([ -e /tmp/do_S12 ] && echo there || echo gone)"
  same "the end is told" 1 "$(cat /tmp/done_S12)"
  rm -f /tmp/done_S12
}
mount --bind "$folder/tmp" /tmp
cd /

set_keys() {
  while [ $# -gt 0 ]; do
    nvram set "$1" "$2"
    shift 2
  done
}

set_keys net.wifi NO net.dhcp NO net.ipaddr 192.0.2.57 net.netmask 255.255.255.0 net.gateway 192.0.2.1 net.ns 192.0.2.1,192.0.2.2
restart
same "a static address" "eth0 up 192.0.2.57/24
ra0 up
default via 192.0.2.1 dev eth0
nameserver 192.0.2.1
nameserver 192.0.2.2" "$(state)"
same "no word about it" '' "$(cat "$folder/errors")"
same "the other end answers" yes "$(ping -c 1 -W 20 192.0.2.1 > /dev/null 2>&1 && echo yes || busybox ping -c 1 -W 20 192.0.2.1 > /dev/null && echo yes)"

set_keys net.ipaddr 192.0.2.58 net.gateway 192.0.2.2
restart
same "another address in its place" "eth0 up 192.0.2.58/24
ra0 up
default via 192.0.2.2 dev eth0
nameserver 192.0.2.1
nameserver 192.0.2.2" "$(state)"

set_keys net.wifi YES net.essid 'Cafe "Anna"' net.key 'a "key"; reboot' net.authtype WPA2PSK
restart
same "the radio in the cable's place" "eth0 down
ra0 up 192.0.2.58/24
default via 192.0.2.2 dev ra0
nameserver 192.0.2.1
nameserver 192.0.2.2" "$(state)"
same "what it joins" 'network={
  ssid=436166652022416e6e6122
  scan_ssid=1
  key_mgmt=WPA-PSK WPA-PSK-SHA256
  psk="a "key"; reboot"
}' "$(cat "$folder/joined")"
same "and its key is no file that others read" gone "$([ -e "$folder/run/wpa.conf" ] && stat -c %a "$folder/run/wpa.conf" | grep -v 600 || echo gone)"

cat > "$folder/udhcpd.conf" <<EOF
start 192.0.2.100
end 192.0.2.100
interface far
lease_file $folder/leases
pidfile $folder/udhcpd.pid
option subnet 255.255.255.0
option router 192.0.2.1
option dns 192.0.2.1 192.0.2.3
option lease 600
EOF
: > "$folder/leases"
ip netns exec there udhcpd -f "$folder/udhcpd.conf" > "$folder/udhcpd.log" 2>&1 &
server=$!
set_keys net.wifi NO net.dhcp YES
restart
same "an address by DHCP" "eth0 up 192.0.2.100/24
ra0 up
default via 192.0.2.1 dev eth0
nameserver 192.0.2.1
nameserver 192.0.2.3" "$(state)"
same "the client goes on" yes "$(kill -0 "$(cat "$folder/run/dhcp-eth0.pid")" && echo yes)"
client=$(cat "$folder/run/dhcp-eth0.pid")

kill "$server"
wait "$server" 2>/dev/null
echo DHCP_SECONDS=3 >> "$ZQ_BOARD"
restart
same "without an answer nothing of before is left" "eth0 up${newline}ra0 up" "$(state)"
same "and it says so" 'S12network: eth0: not connected' "$(grep S12network "$folder/errors")"
# shellcheck disable=SC2317
gone() { ! kill -0 "$client" 2>/dev/null; }
await 60 gone || same "the client of before is gone" gone there
ip netns exec there udhcpd -f "$folder/udhcpd.conf" > "$folder/udhcpd.log" 2>&1 &
# shellcheck disable=SC2317
has_address() { state | grep -q 'eth0 up 192\.0\.2\.100/24'; }
await 60 has_address || same "an address that comes later" there none
kill "$(cat "$folder/udhcpd.pid")"

set_keys net.wifi YES net.dhcp NO
ip -n there link set radio down
echo JOIN_SECONDS=1 >> "$ZQ_BOARD"
restart
echo JOIN_SECONDS=60 >> "$ZQ_BOARD"
# What the kernel calls a link whose other end is off depends on what it was before.
same "a radio that cannot join has its address for later" "eth0 down
ra0 down 192.0.2.58/24" "$(state | sed -n '1,2s/lowerlayerdown/down/; 1,2p')"
same "and it says so" 'S12network: ra0: cannot join Cafe "Anna"' "$(grep 'cannot join' "$folder/errors")"
ip -n there link set radio up
set_keys net.dhcp YES
echo DHCP_SECONDS=60 >> "$ZQ_BOARD"

# The radio, in a network of its own. What it joins with notes the address that it had when the client asked.
sed "s/far/radio/; s/192\.0\.2\./198.51.100./g" "$folder/udhcpd.conf" > "$folder/radio.conf"
ip -n there addr add 198.51.100.1/24 dev radio
ip netns exec there udhcpd -f "$folder/radio.conf" > "$folder/udhcpd.log" 2>&1 &
server=$!
cat > "$folder/asked" <<EOF
#!/bin/sh
ip -4 -o addr show dev ra0 | sed -n "s/.*inet \\([^ ]*\\).*/\$1 \\1/p" >> "$folder/meanwhile"
exec "$scripts/udhcpc-event.real" "\$@"
EOF
mv "$scripts/udhcpc-event" "$scripts/udhcpc-event.real"
mv "$folder/asked" "$scripts/udhcpc-event"
chmod +x "$scripts/udhcpc-event"
ip link set ra0 address 02:00:00:00:10:01
set_keys net.wifi YES
restart
same "the radio by DHCP" "eth0 down
ra0 up 198.51.100.100/24
default via 198.51.100.1 dev ra0
nameserver 198.51.100.1
nameserver 198.51.100.3" "$(state)"
same "with an address that needs no server until then" "deconfig 169.254.17.1/16
bound 169.254.17.1/16" "$(cat "$folder/meanwhile")"
kill "$server" "$(cat "$folder/run/dhcp-ra0.pid")"
wait "$server" 2>/dev/null

# On a board with the other client.
rm "$folder/bin/udhcpc"
set_keys net.wifi NO
ip netns exec there udhcpd -f "$folder/udhcpd.conf" > "$folder/udhcpd.log" 2>&1 &
server=$!
restart
same "an address by dhclient" "eth0 up 192.0.2.100/24
ra0 up
default via 192.0.2.1 dev eth0
nameserver 192.0.2.1
nameserver 192.0.2.3" "$(state)"
client=$(cat "$folder/run/dhcp-eth0.pid")
same "dhclient goes on" yes "$(kill -0 "$client" && echo yes)"
kill "$server"
wait "$server" 2>/dev/null
echo DHCP_SECONDS=3 >> "$ZQ_BOARD"
restart
same "without an answer nothing of dhclient's is left" "eth0 up${newline}ra0 up" "$(state)"
await 60 gone || same "dhclient of before is gone" gone there

# What still runs, and the networks, go with this shell, the first process of their namespace.
exit "$failed"

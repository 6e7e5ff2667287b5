#!/bin/sh
# What the scripts tell a board's programs, and how they read values.  board_test.sh FOLDER-OF-SCRIPTS
set -u
tests=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/system/expect.sh
. "$tests/expect.sh"
here=$1
ZQ_BOARD=$folder/none
# shellcheck source=scripts/system/common.sh
. "$here/common.sh"

# network NAME SECURITY KEY [INDEX]
network() {
  WIFI_SSID=$1 WIFI_SECURITY=$2 WIFI_KEY=$3 WIFI_INDEX=${4:-1}
  wpa_network || echo "refused"
}
# config NAME-IN-HEX LINES
config() {
  printf 'network={\n  ssid=%s\n  scan_ssid=1\n%s\n}' "$1" "$2"
}

same open "$(config 61 '  key_mgmt=NONE')" "$(network a open '')"
same wpa "$(config 4c69 '  key_mgmt=WPA-PSK WPA-PSK-SHA256
  psk="quitten baum"')" "$(network Li wpa 'quitten baum')"
same wpa3 "$(config 4c69 '  key_mgmt=SAE WPA-PSK
  ieee80211w=1
  psk="quittenbaum"')" "$(network Li sae quittenbaum)"
hexkey=0123456789abcdefABCDEF01234567890123456789abcdefABCDEF0123456789
same "a key of 64 digits" "$(config 61 "  key_mgmt=WPA-PSK WPA-PSK-SHA256
  psk=$hexkey")" "$(network a wpa "$hexkey")"
same "64 letters" refused "$(network a wpa "x${hexkey#?}")"
same "WEP by digits" "$(config 61 '  key_mgmt=NONE
  wep_key0=0123456789
  wep_tx_keyidx=0')" "$(network a wep 0123456789)"
same "WEP by letters, third key" "$(config 61 '  key_mgmt=NONE
  wep_key2=6122626365
  wep_tx_keyidx=2')" "$(network a wep 'a"bce' 3)"
same "WEP by what is neither" refused "$(network a wep 'abcdefghi"')"
same "WEP of another length" refused "$(network a wep '123456')"
# shellcheck disable=SC2016
for key in 'a"b"c"def' '$(reboot)' '`reboot`' "it's mine" 'a\nb\"cdef' '#1234567' '12345678' 'é'; do
  wanted="$(config 61 "  key_mgmt=WPA-PSK WPA-PSK-SHA256
  psk=\"$key\"")"
  [ "$key" != 'é' ] || wanted=refused
  same "the key $key" "$wanted" "$(network a wpa "$key")"
done
sixteen=0123456789abcdef
for key in '' 1234567 "$sixteen$sixteen$sixteen${sixteen}0" "12345678${newline}}" "$(printf '12345678\001')" "$(printf '12345678\377')"; do
  same "a key that cannot be one: $key" refused "$(network a wpa "$key")"
done
same "a name of many kinds" 'ssid=2220270a5b5c25ff' "$(network "$(printf '" \047\n[\\%%\377')" open '' | grep -o 'ssid=[0-9a-f]*' | head -n 1)"

for good in 1.2.3.4 255.255.255.255 0.0.0.0; do is_ipv4 "$good" || same "$good" yes no; done
for bad in '' . ... 1.2.3 1.2.3.4.5 1..2.3 .1.2.3 1.2.3. a.b.c.d '1.2.3.4 ' "1.2.3.4${newline}" '-1.2.3.4'; do
  is_ipv4 "$bad" && same "$bad" no yes
done
for good in pool.ntp.org 192.0.2.1 2001:db8::1 my-host_2; do is_host "$good" || same "$good" yes no; done
# shellcheck disable=SC2016
for bad in '' -p 'a b' 'a;b' '$(x)' "a${newline}b" 'a/b'; do is_host "$bad" && same "$bad" no yes; done

# The module's word on the servers of network time, too.
# module_server WHICH
module_server() {
  sed -n "s/^constexpr char kDefault$1NTPServer\[\] = \"\(.*\)\";$/\1/p" "$tests/../../class_modules/ZQUtil/src/ZQDateTime.h"
}
same "the first server" "$(module_server Primary)" "$NTP_PRIMARY"
same "the second server" "$(module_server Secondary)" "$NTP_SECONDARY"

# Who keeps the time, by programs in the place of the board's that write down what they are told.
mkdir "$folder/bin" "$folder/systemd"
told() { cat "$folder/told" 2>/dev/null; rm -f "$folder/told"; }
# program NAME LINES
program() {
  printf '#!/bin/sh\n%s\n' "$2" > "$folder/bin/$1"
  chmod +x "$folder/bin/$1"
}
# shellcheck disable=SC2016
(
  PATH=$folder/bin:$PATH RUN_DIR=$folder/run TIMESYNCD_DIR=$folder/systemd/timesyncd.conf.d
  program ntpd 'echo ntpsec ntpd'
  program systemctl 'case $1 in cat) exit 1 ;; *) echo "systemctl $*" >> '"$folder/told ;; esac"
  ntp_start first second && same "another ntpd, and none of systemd's" refused started
  program systemctl 'case $1 in cat) ;; *) echo "systemctl $*" >> '"$folder/told ;; esac"
  ntp_start first second || same "the time by systemd" started refused
  same "systemd's settings" "[Time]
NTP=first second
FallbackNTP=" "$(cat "$TIMESYNCD_DIR/zqutil.conf")"
  same "systemd's service starts" "systemctl --no-block restart systemd-timesyncd" "$(told)"
  ntp_stop
  same "systemd's service stops" "systemctl --no-block stop systemd-timesyncd" "$(told)"
  program ntpd '[ "$1" = --help ] && { echo BusyBox v1.35.0 >&2; exit 1; }; echo "ntpd $*" >> '"$folder/told; exec sleep 60"
  ntp_start first second || same "the time by busybox" started refused
  # shellcheck disable=SC2317
  is_told() { [ -s "$folder/told" ]; }
  await 20 is_told
  same "busybox's servers" "ntpd -n -p first -p second" "$(told)"
  client=$(cat "$RUN_DIR/ntp.pid")
  ntp_stop
  # shellcheck disable=SC2317
  ended() { ! kill -0 "$client" 2>/dev/null; }
  await 20 ended || same "busybox's client ends" ended goes
  same "systemd is not asked" '' "$(told)"
  exit "$failed"
) || failed=1

echo old > "$folder/kept"
ln -s kept "$folder/link"
echo new | replace_file "$folder/link"
same "a link to a file stays one" "new kept" "$(cat "$folder/kept") $(readlink "$folder/link")"
echo new | replace_file "$folder/none/file" 2>/dev/null && same "a folder that is missing" refused taken

exit "$failed"

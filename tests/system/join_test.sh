#!/bin/sh
# What wpa_supplicant understands of the networks that the scripts tell it of.  join_test.sh FOLDER-OF-SCRIPTS
set -u
tests=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/system/expect.sh
. "$tests/expect.sh"
here=$1
ZQ_BOARD=$folder/none
# shellcheck source=scripts/system/common.sh
. "$here/common.sh"
command -v wpa_supplicant >/dev/null || {
  echo "no wpa_supplicant: install the package wpasupplicant"
  exit 1
}

# dump WHAT: the bytes of the program's hexadecimal dump of that name, as digits.
dump() {
  awk -v what="$1 - hexdump" '
    # A dump with its text besides, 16 bytes a line, or one of bytes alone, behind the colon.
    index($0, what "_ascii(") == 1 { inside = 1; next }
    index($0, what "(") == 1 { sub(/^[^:]*: */, ""); gsub(/ /, ""); printf "%s", $0; exit }
    inside && /^     / { bytes = substr($0, 6, 48); gsub(/ /, "", bytes); printf "%s", bytes; next }
    inside { exit }
  ' "$folder/said"
}
# said WHAT: the value in the line WHAT=VALUE or WHAT: VALUE.
said() {
  sed -n "s/^$1[=:] *\([^ ]*\).*/\1/p" "$folder/said"
}

# shellcheck disable=SC2317
over() { grep -q ' Added interface ' "$folder/said" || ! kill -0 "$program" 2>/dev/null; }

# understood NAME SECURITY KEY [INDEX]: what the program makes of it, without a radio.
understood() {
  WIFI_SSID=$1 WIFI_SECURITY=$2 WIFI_KEY=$3 WIFI_INDEX=${4:-1}
  wpa_network > "$folder/conf" || {
    echo refused
    return
  }
  # The interface is there on any machine, and left as it is.
  : > "$folder/said"
  wpa_supplicant -dd -K -D none -i lo -c "$folder/conf" -f "$folder/said" > "$folder/errors" 2>&1 &
  program=$!
  await 60 over
  kill -9 "$program" 2>/dev/null
  wait "$program" 2>/dev/null
  grep -q ' Added interface ' "$folder/said" || cat "$folder/said"
  number=$((WIFI_INDEX - 1))
  echo "$(dump ssid) $(said key_mgmt) $(dump 'PSK (ASCII passphrase)')$(dump PSK)$(dump "wep_key$number") $(said wep_tx_keyidx)$(said ieee80211w)"
}

# Its numbers of key_mgmt: 0x4 none, 0x102 a password by SHA-1 or SHA-256, 0x402 a password by SAE or SHA-1.
same open "61 0x4  " "$(understood a open '')"
same wpa "$(hex Lindenhof) 0x102 $(hex 'quitten baum') " "$(understood Lindenhof wpa 'quitten baum')"
same wpa3 "$(hex Lindenhof) 0x402 $(hex quittenbaum) 1" "$(understood Lindenhof sae quittenbaum)"
digits=0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef
same "a key of 64 digits" "61 0x102 $digits " "$(understood a wpa "$digits")"
same "WEP by digits, the first key as by default" "61 0x4 0123456789 " "$(understood a wep 0123456789)"
same "WEP by letters, third key" "61 0x4 $(hex 'a"bce') 2" "$(understood a wep 'a"bce' 3)"
same "WEP of 26 digits, fourth key" "61 0x4 0123456789abcdef0123456789 3" "$(understood a wep 0123456789abcdef0123456789 4)"
# shellcheck disable=SC2016
for key in 'a "key"; reboot' '"quoted"' '$(reboot)' '`reboot`' "it's mine" 'a\nb\"cdef' '#1234567' ' blank ends ' 'P"12345678"' '}network={' \
  'sixty-three characters, as many as a password may have at the mo'; do
  key=$(printf '%.63s' "$key")
  same "the key $key" "61 0x102 $(hex "$key") " "$(understood a wpa "$key")"
done
long=$(printf 'Straße %s \047"\\#=}{%% \377' "$newline")
same "a name of all kinds of bytes" "$(hex "$long") 0x4  " "$(understood "$long" open '')"
same "a name of 32 bytes" "$(hex '0123456789 123456789 123456789 1') 0x4  " "$(understood '0123456789 123456789 123456789 1' open '')"

exit "$failed"

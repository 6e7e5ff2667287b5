# shellcheck shell=sh disable=SC2034,SC2154
# How the system scripts act on a board: Linux with iproute2 or busybox, wpa_supplicant, and udhcpc or dhclient. Each
# function may be replaced in /etc/zq/board.sh. Unless it says otherwise, a function's status is whether it worked.

# Seconds that joining a network, and an answer of a DHCP server, may take.
JOIN_SECONDS=20
DHCP_SECONDS=30
# Whether clients go on trying after that, for a network that comes later, and seconds from one try to the next.
COMES_LATER=yes
DHCP_PAUSE_SECONDS=20
# Seconds from an address by DHCP to the end of a network restart. The screens look once a second while the restart goes
# on, and takes three looks from the network to its address: one that came with the end would not be told of.
SETTLE_SECONDS=3
# Where process ids and settings of running clients are kept; gone after a reboot.
RUN_DIR=/run/zq

# The servers of network time that a device without a choice asks.
NTP_PRIMARY=0.pool.ntp.org
NTP_SECONDARY=pool.ntp.org

# Where the host's settings files and its cache are, and what a factory reset leaves: what was there when the device left
# the factory.
SETTINGS_DIR=${ZQ_CONFIG_DIR:-/var/lib/sorel}
KEPT_SETTINGS='zqapplog.ini'
KEPT_KEYS='sys.activerfs sys.standbyrfs sys.bldrver sys.numparts'

# link_up INTERFACE, link_down INTERFACE
link_up() {
  ip link set dev "$1" up
}
link_down() {
  ip link set dev "$1" down
}

# address_set INTERFACE ADDRESS NETMASK: its only address.
address_set() {
  ip addr flush dev "$1" && ip addr add "$2/$3" dev "$1"
}
# address_clear INTERFACE: its addresses, and the routes over it with them.
address_clear() {
  ip addr flush dev "$1"
}
# route_default INTERFACE GATEWAY: the only default route.
route_default() {
  while ip route del default 2>/dev/null; do :; done
  ip route add default via "$2" dev "$1"
}

# True once the interface is in its network: the radio's carrier is there before the password has been found right.
has_joined() {
  state=
  { read -r state < "/sys/class/net/$1/operstate"; } 2>/dev/null || :
  [ "$state" = up ]
}

# stop_client NAME: the client whose process id is in RUN_DIR/NAME.pid.
stop_client() {
  if [ -f "$RUN_DIR/$1.pid" ]; then
    kill "$(cat "$RUN_DIR/$1.pid")" 2>/dev/null || :
    rm -f "$RUN_DIR/$1.pid"
  fi
}

# hex TEXT: its bytes in hexadecimal, on standard output.
hex() {
  printf %s "$1" | od -An -v -tx1 | tr -d ' \n'
}

# wpa_network: what wpa_supplicant is told of the network in WIFI_SSID, WIFI_SECURITY, WIFI_KEY and WIFI_INDEX. The name
# goes as hexadecimal digits, so that none of its bytes means anything there. Fails, with nothing printed, when the key
# cannot be one.
wpa_network() {
  case $WIFI_SECURITY in
    open) keys='  key_mgmt=NONE' ;;
    wep)
      case ${#WIFI_KEY} in
        5 | 13 | 16) digits=$(hex "$WIFI_KEY") ;;
        10 | 26 | 32) digits=$WIFI_KEY ;;
        *) return 1 ;;
      esac
      case $digits in *[!0-9A-Fa-f]*) return 1 ;; esac
      number=$((WIFI_INDEX > 0 ? WIFI_INDEX - 1 : 0))
      keys="  key_mgmt=NONE${newline}  wep_key$number=$digits${newline}  wep_tx_keyidx=$number"
      ;;
    *)
      case ${#WIFI_KEY} in
        64)
          case $WIFI_KEY in *[!0-9A-Fa-f]*) return 1 ;; esac
          psk=$WIFI_KEY
          ;;
        *)
          # Printable, so no line's end; of quotes the outermost count.
          case $WIFI_KEY in *[!\ -~]*) return 1 ;; esac
          [ ${#WIFI_KEY} -ge 8 ] && [ ${#WIFI_KEY} -le 63 ] || return 1
          psk="\"$WIFI_KEY\""
          ;;
      esac
      keys="  key_mgmt=WPA-PSK WPA-PSK-SHA256${newline}  psk=$psk"
      [ "$WIFI_SECURITY" = wpa ] || keys="  key_mgmt=SAE WPA-PSK${newline}  ieee80211w=1${newline}  psk=$psk"
      ;;
  esac
  printf 'network={\n  ssid=%s\n  scan_ssid=1\n%s\n}\n' "$(hex "$WIFI_SSID")" "$keys"
}

# wifi_join INTERFACE: joins the network in WIFI_SSID and its kin; done when it is joined. When it fails, the
# program goes on trying.
wifi_join() {
  mkdir -p "$RUN_DIR" || return 1
  (umask 077 && wpa_network > "$RUN_DIR/wpa.conf") || {
    log "the key does not suit the network"
    return 1
  }
  wpa_supplicant -B -i "$1" -c "$RUN_DIR/wpa.conf" -P "$RUN_DIR/wpa.pid" || return 1
  seconds=0
  until has_joined "$1"; do
    [ "$seconds" -lt "$JOIN_SECONDS" ] || return 1
    sleep 1
    seconds=$((seconds + 1))
  done
}
# wifi_leave INTERFACE
wifi_leave() {
  stop_client wpa
  rm -f "$RUN_DIR/wpa.conf"
}

# dhcp_start INTERFACE: asks for an address; done when there is one, with its route and name servers. The client goes on
# to keep it.
dhcp_start() {
  mkdir -p "$RUN_DIR" || return 1
  if command -v udhcpc >/dev/null; then
    udhcpc -i "$1" -n -t "$((DHCP_SECONDS / 3))" -T 3 -A 1 -p "$RUN_DIR/dhcp-$1.pid" -s "$here/udhcpc-event" >/dev/null
  else
    timeout "$DHCP_SECONDS" dhclient -1 -q -pf "$RUN_DIR/dhcp-$1.pid" -lf "$RUN_DIR/dhcp-$1.leases" "$1"
  fi
}
# dhcp_later INTERFACE: leaves a client that goes on asking, for a network that comes later.
dhcp_later() {
  mkdir -p "$RUN_DIR" || return 1
  if command -v udhcpc >/dev/null; then
    udhcpc -f -i "$1" -t 3 -T 3 -A "$DHCP_PAUSE_SECONDS" -p "$RUN_DIR/dhcp-$1.pid" -s "$here/udhcpc-event" < /dev/null >/dev/null 2>&1 &
  else
    dhclient -nw -q -pf "$RUN_DIR/dhcp-$1.pid" -lf "$RUN_DIR/dhcp-$1.leases" "$1"
  fi
}
# dhcp_stop INTERFACE
dhcp_stop() {
  stop_client "dhcp-$1"
}

# timezone_set FILE: the zone's file below /usr/share/zoneinfo.
timezone_set() {
  ln -sfn "$1" /etc/localtime
}
# clock_set MMDDhhmmCCYY: local time.
clock_set() {
  date "$1" >/dev/null || return 1
  ! command -v hwclock >/dev/null || hwclock -w
}
# True for busybox's ntpd: to others of that name -p is no server.
has_ntpd() {
  ntpd --help 2>&1 | grep -q BusyBox
}
# True where systemd keeps the time. Its folder of settings is gone after a reboot.
has_timesyncd() {
  [ -d "${TIMESYNCD_DIR%/*}" ] && systemctl cat systemd-timesyncd >/dev/null 2>&1
}
TIMESYNCD_DIR=/run/systemd/timesyncd.conf.d
# ntp_start PRIMARY SECONDARY: from now on.
ntp_start() {
  if has_ntpd; then
    mkdir -p "$RUN_DIR" || return 1
    ntpd -n -p "$1" -p "$2" < /dev/null >/dev/null 2>&1 &
    echo $! > "$RUN_DIR/ntp.pid"
  elif has_timesyncd; then
    mkdir -p "$TIMESYNCD_DIR" || return 1
    printf '[Time]\nNTP=%s %s\nFallbackNTP=\n' "$1" "$2" > "$TIMESYNCD_DIR/zqutil.conf" || return 1
    # Without waiting: at boot it may itself have to wait for who calls this.
    systemctl --no-block restart systemd-timesyncd
  else
    return 1
  fi
}
ntp_stop() {
  stop_client ntp
  if ! has_ntpd && has_timesyncd; then systemctl --no-block stop systemd-timesyncd; fi
}

# board_reboot: restarts the device.
board_reboot() {
  reboot
}

# shellcheck shell=sh
# What the device's system scripts share. Each sources this file with `here` set to the folder of the scripts.
#
# A board brings functions of its own in /etc/zq/board.sh, in place of those in board.sh that do not suit it: how an
# interface is switched on, which DHCP client it has, how it reboots.

# Scripts written for the C locale: bytes are bytes, whatever a network is called.
LC_ALL=C
export LC_ALL
newline='
'

log() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
}

# Sets $value to the key's value from the key store, byte for byte; to nothing when there is no such key.
key() {
  value=$(nvram get "$1" 2>/dev/null && printf x)
  value=${value%x}
  value=${value%"$newline"}
}

# True for four decimal numbers with dots between: what may stand as an address on a command line.
is_ipv4() {
  case $1 in
    *[!0-9.]* | *..* | .* | *. | *.*.*.*.*) return 1 ;;
    *.*.*.*) return 0 ;;
    *) return 1 ;;
  esac
}

# True for the name of a host or its address: nothing that a program takes for an option or a shell for more.
is_host() {
  case $1 in
    '' | -* | *[!A-Za-z0-9.:_-]*) return 1 ;;
    *) return 0 ;;
  esac
}

has_interface() {
  [ -d "/sys/class/net/$1" ]
}

# Puts standard input in a file's place at once, so that a reader sees the old text or the new one. A link to a file
# that is kept elsewhere stays.
replace_file() {
  target=$(readlink -f "$1") || target=$1
  if cat > "$target.new" && mv -f "$target.new" "$target"; then return 0; fi
  log "cannot write $1"
  return 1
}

# Writes /etc/resolv.conf for the name servers, separated by commas or blanks.
write_name_servers() {
  (
    set -f
    IFS=", $newline"
    for server in $1; do
      case $server in
        '') ;;
        *[!0-9A-Fa-f.:]*) log "no name server: $server" ;;
        *) printf 'nameserver %s\n' "$server" ;;
      esac
    done
  ) | replace_file /etc/resolv.conf
}

: "${here:?}"
# shellcheck source=scripts/system/board.sh
. "$here/board.sh"
board=${ZQ_BOARD:-/etc/zq/board.sh}
# shellcheck disable=SC1090
[ ! -f "$board" ] || . "$board"

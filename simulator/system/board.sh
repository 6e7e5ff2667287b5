# shellcheck shell=sh disable=SC2034,SC2154
# How the system scripts act on the simulated device: they write the state of its interfaces into its files in hw/, and ask
# the air and the cable there. Read in place of /etc/zq/board.sh unless the device has its own.

hw=$ZQ_DEVICE/hw
RUN_DIR=/tmp
SETTINGS_DIR=$ZQ_DEVICE
# What comes into the air later is met by the next restart: no program runs on.
COMES_LATER=no

state_file() {
  if [ "$1" = ra0 ]; then echo "$hw/ra0/link.ini"; else echo "$hw/$1.ini"; fi
}

# An interface whose file a person has taken away is none, whatever is left of it elsewhere.
has_interface() {
  [ -f "$(state_file "$1")" ]
}

# setting FILE SECTION KEY: the last value of the key in the section, on standard output.
setting() {
  section=$2 key=$3 awk '
    /^[ \t]*\[/ { at = $0; gsub(/^[ \t]*\[[ \t]*|[ \t]*\].*$/, "", at); next }
    at == ENVIRON["section"] && (equals = index($0, "=")) {
      name = substr($0, 1, equals - 1); gsub(/^[ \t]+|[ \t]+$/, "", name)
      if (name == ENVIRON["key"]) { value = substr($0, equals + 1); gsub(/^[ \t]+|[ \t\r]+$/, "", value) }
    }
    END { print value }
  ' "$1" 2>/dev/null
}

# number TEXT: the text when it is a number of at most seven digits, else 0.
number() {
  case $1 in
    '' | *[!0-9]* | ????????*) echo 0 ;;
    *) echo "$1" ;;
  esac
}

# change FILE SECTION KEY=VALUE...: sets the keys in the section, and takes those out that stand alone. Comments and all
# else stay.
change() {
  file=$1
  section=$2
  shift 2
  changes=$(printf '%s\n' "$@") section=$section awk '
    function finish(  i) { for (i = 1; i <= count; i++) if (!done[i] && line[i] != "") print line[i]; finished = 1 }
    BEGIN {
      count = split(ENVIRON["changes"], given, "\n")
      for (i = 1; i <= count; i++) {
        equals = index(given[i], "=")
        name = equals ? substr(given[i], 1, equals - 1) : given[i]
        number[name] = i
        value = substr(given[i], equals + 1)
        line[i] = equals ? name " =" (value == "" ? "" : " " value) : ""
      }
    }
    /^[ \t]*\[/ {
      if (inside && !finished) finish()
      at = $0; gsub(/^[ \t]*\[[ \t]*|[ \t]*\].*$/, "", at); inside = at == ENVIRON["section"]
      if (inside) seen = 1
    }
    inside && !/^[ \t]*[;#]/ && (equals = index($0, "=")) {
      name = substr($0, 1, equals - 1); gsub(/^[ \t]+|[ \t]+$/, "", name)
      if (name in number) {
        i = number[name]
        if (!done[i] && line[i] != "") print line[i]
        done[i] = 1
        next
      }
    }
    # A section ends before the blank lines and comments that lead to the next.
    inside && !finished && /^[ \t]*$/ { finish() }
    { print }
    END { if (!seen) print "[" ENVIRON["section"] "]"; if (!finished) finish() }
  ' "$file" > "$file.new" && mv -f "$file.new" "$file"
}

# What is written is safe when the device "loses power": the disk is this machine's.
sync() {
  :
}

wait_ms() {
  [ "$1" -eq 0 ] || sleep "$(($1 / 1000)).$(printf %03d $(($1 % 1000)))"
}

# zqsim writes a line here each time something appears in /tmp, and closes it when the program has ended.
wait_for_request() {
  read -r _
}

link_up() {
  change "$(state_file "$1")" link up=yes
}
link_down() {
  change "$(state_file "$1")" link up=no
}
address_set() {
  change "$(state_file "$1")" address "ip=$2" "netmask=$3"
}
address_clear() {
  change "$(state_file "$1")" address ip= netmask= gateway=
}
route_default() {
  change "$(state_file "$1")" address "gateway=$2"
}

# cell_answer: "yes" when a cell in the air has the name WIFI_SSID and WIFI_KEY as its password, or none; "key" when
# there is one, but of another password; nothing when there is none.
cell_answer() {
  name=$(hex "$WIFI_SSID") password=$(hex "$WIFI_KEY") awk '
    function bytes(text,  i, digits) {
      for (i = 1; i <= length(text); i++) digits = digits code[substr(text, i, 1)]
      return digits
    }
    function finish() {
      if (!any || name != ENVIRON["name"]) return
      if (!locked || secret == ENVIRON["password"]) answer = "yes"
      else if (answer == "") answer = "key"
    }
    BEGIN { for (i = 1; i < 256; i++) code[sprintf("%c", i)] = sprintf("%02x", i) }
    { gsub(/^[ \t]+|[ \t\r]+$/, "") }
    /^[;#]/ { next }
    /^\[.*\]$/ {
      finish()
      title = substr($0, 2, length($0) - 2); gsub(/^[ \t]+|[ \t]+$/, "", title)
      name = substr(bytes(title), 1, 64); any = 1; locked = 0; secret = ""; hexed = 0
      next
    }
    equals = index($0, "=") {
      key = substr($0, 1, equals - 1); gsub(/[ \t]+$/, "", key)
      value = substr($0, equals + 1); gsub(/^[ \t]+/, "", value)
      if (key == "name" && !hexed) name = substr(bytes(value), 1, 64)
      if (key == "name_hex") { name = tolower(value); gsub(/[ \t:]/, "", name); hexed = 1 }
      if (key == "password") { locked = 1; secret = bytes(value) }
    }
    END { finish(); print answer }
  ' "$hw/ra0/cells.ini" 2>/dev/null
}

wifi_join() {
  wait_ms "$(number "$(setting "$hw/ra0/link.ini" link join_ms)")"
  case $(cell_answer) in
    yes) ;;
    key)
      log "ra0: the key of $WIFI_SSID is another"
      return 1
      ;;
    *) return 1 ;;
  esac
  case $WIFI_SSID in
    # What would not come back from a line as it went in.
    ' '* | *' ' | *[!\ -~]*) change "$hw/ra0/link.ini" link associated=yes "essid_hex=$(hex "$WIFI_SSID")" essid ;;
    *) change "$hw/ra0/link.ini" link associated=yes "essid=$WIFI_SSID" essid_hex ;;
  esac
}
wifi_leave() {
  change "$hw/ra0/link.ini" link associated=no essid= essid_hex
}

# linked INTERFACE: whether anybody is at the other end.
linked() {
  if [ "$1" = ra0 ]; then
    [ "$(setting "$hw/ra0/link.ini" link associated)" = yes ]
  else
    [ "$(setting "$(state_file "$1")" link cable)" = plugged ]
  fi
}

dhcp_start() {
  file=$(state_file "$1")
  wait_ms "$(number "$(setting "$file" dhcp delay_ms)")"
  linked "$1" && [ "$(setting "$file" dhcp answers)" = yes ] || return 1
  address=$(setting "$file" dhcp ip)
  is_ipv4 "$address" || return 1
  netmask=$(setting "$file" dhcp netmask)
  is_ipv4 "$netmask" || netmask=255.255.255.0
  gateway=$(setting "$file" dhcp gateway)
  is_ipv4 "$gateway" || gateway=
  # In one, as a client does it.
  change "$file" address "ip=$address" "netmask=$netmask" "gateway=$gateway"
  write_name_servers "$(setting "$file" dhcp dns)"
}
dhcp_stop() {
  :
}

# The device has no clock of its own: what would be set is written down, and this machine's stays.
clock_file() {
  [ -f "$hw/clock.ini" ] || echo '[clock]' > "$hw/clock.ini"
  change "$hw/clock.ini" clock "$@"
}
clock_set() {
  clock_file "set=$1"
}
ntp_start() {
  clock_file network_time=on "servers=$1 $2"
}
ntp_stop() {
  clock_file network_time=off servers=
}

# zqsim ends the program and starts it again.
board_reboot() {
  echo reboot >&3
}

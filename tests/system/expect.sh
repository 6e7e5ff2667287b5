# shellcheck shell=sh disable=SC2034
# Sourced by the tests of the device's system scripts.
failed=0
newline='
'

# same WHAT WANTED GOT
same() {
  [ "$2" = "$3" ] && return
  printf 'FAILED %s\n--- wanted\n%s\n--- got\n%s\n' "$1" "$2" "$3"
  failed=1
}

# A folder for the test's devices, gone at its end; in memory where there is room for it.
parent=/dev/shm
[ -w "$parent" ] || parent=${TMPDIR:-/tmp}
folder=$(mktemp -d "$parent/zqutil-system-XXXXXX") || exit 1
trap 'rm -rf "$folder"' EXIT

# await SECONDS COMMAND...: runs the command each 50 ms until it succeeds.
await() {
  left=$(($1 * 20))
  shift
  until "$@"; do
    [ "$left" -gt 0 ] || return 1
    left=$((left - 1))
    sleep 0.05
  done
}

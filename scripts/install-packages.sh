#!/bin/sh
# Installs the packages of packages.txt that are missing; silent and quick when none is. With an architecture, those of
# packages-ARCHITECTURE.txt.
set -eu
abi=${1:-}
list=$(dirname "$0")/packages${abi:+-$abi}.txt
wanted=$(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$list")
missing=
for package in $wanted; do
  state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || state=
  [ "$state" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0
root=
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || {
    echo "install-packages: missing:$missing; run as root, or install sudo" >&2
    exit 1
  }
  root=sudo
fi
echo "installing:$missing"

# Some are servers, which the tests start themselves: nothing of theirs is to run as a service of this machine.
policy=/usr/sbin/policy-rc.d
if [ ! -e "$policy" ]; then
  printf '#!/bin/sh\nexit 101\n' | $root tee "$policy" >/dev/null
  trap '$root rm -f "$policy"' EXIT
  trap 'exit 1' HUP INT TERM
  $root chmod 755 "$policy"
fi

[ -z "$abi" ] || $root dpkg --add-architecture "$abi"
$root apt-get update -qq
# One word a package is meant here.
# shellcheck disable=SC2086
DEBIAN_FRONTEND=noninteractive $root apt-get install -qq -y --no-install-recommends $missing >/dev/null

#!/bin/sh
# What `make install` lays down works from there: a program of somebody else's builds against it, by CMake and by
# pkg-config, and the installed host runs a script on a device.
#   install_test.sh BUILD_FOLDER
set -eu
build=$1
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
  echo "install_test: $*" >&2
  exit 1
}

cmake --install "$build" --prefix "$work/usr" >"$work/install.log" 2>&1 || {
  cat "$work/install.log" >&2
  fail "it does not install"
}
# DESTDIR is honoured: nothing is written elsewhere.
DESTDIR=$work/root cmake --install "$build" --prefix /usr >/dev/null
[ -x "$work/root/usr/bin/sorel" ] || fail "DESTDIR is not honoured"

# Where a script's files go: the module makes no folder for them.
folders=$(sed -n 's/^d  *\([^ ]*\).*/\1/p' "$work/usr/lib/tmpfiles.d/zqutil.conf")
home=$(sed -n 's/^WorkingDirectory=//p' "$work/usr/lib/systemd/system/sorel.service")
for folder in "$home" "$home/cache"; do
  echo "$folders" | grep -qx "$folder" || fail "nothing makes $folder"
done

consume() {
  cmake -S "$here/consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/usr" && cmake --build "$work/consumer"
}
consume >"$work/consumer.log" 2>&1 || {
  cat "$work/consumer.log" >&2
  fail "find_package(zqutil) gives nothing to build against"
}
said=$(ZQ_TRACE=stderr ZQ_NVRAM_CONFIG=/nonexistent "$work/consumer/consumer" 2>"$work/trace")
[ "$said" = "ok 1" ] || fail "the program built by CMake said: $said"
grep -q 'consumer hello from outside' "$work/trace" || fail "no trace from the program"

# shellcheck disable=SC2046 # the words of pkg-config are words
PKG_CONFIG_PATH=$work/usr/lib/pkgconfig c++ -std=c++20 -o "$work/by-pkg-config" "$here/consumer/consumer.cpp" \
  $(PKG_CONFIG_PATH=$work/usr/lib/pkgconfig pkg-config --cflags --libs zqutil)
LD_LIBRARY_PATH=$work/usr/lib ZQ_TRACE=off ZQ_NVRAM_CONFIG=/nonexistent "$work/by-pkg-config" >"$work/said"
[ "$(cat "$work/said")" = "ok 1" ] || fail "the program built by pkg-config said: $(cat "$work/said")"

# The example of a class module, as its own comment says.
# shellcheck disable=SC2046
(cd "$work" && PKG_CONFIG_PATH=$work/usr/lib/pkgconfig && export PKG_CONFIG_PATH &&
  c++ -std=c++20 -Wall -Wextra -Werror -shared -fPIC $(pkg-config --cflags zqutil) "$here/../../examples/module/Lamp.cpp" \
    -o Lamp.so &&
  echo 'const lamp = new Lamp(); lamp.set(40); print(lamp.get(), lamp.name(), typeof ZQUtil); exit(0);' >lamp.js &&
  usr/bin/sorel --module ./Lamp.so lamp.js &&
  ZQ_TRACE=off usr/bin/sorel --module ./Lamp.so --module "$(pkg-config --variable=moduledir zqutil)/ZQUtil.so" lamp.js) \
  >"$work/said" || fail "the example of a class module does not build or run"
[ "$(cat "$work/said")" = "40 lamp undefined
40 lamp function" ] || fail "the example of a class module said: $(cat "$work/said")"

echo 'print(new ZQUtil().getPhoneVolume()); exit(0);' >"$work/script.js"
said=$(cd "$work" && ZQ_TRACE=off usr/bin/sorel --device "$work/device" script.js) || fail "the installed host fails"
[ "$said" = 75 ] || fail "the installed host said: $said"
[ "$("$work/usr/bin/sorel" --version)" = "$("$build/bin/sorel" --version)" ] || fail "another version"

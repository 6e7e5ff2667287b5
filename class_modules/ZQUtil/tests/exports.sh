#!/bin/sh
# What the module exports is what others may rely on, and nothing else: entry points, wrappers, constructor and
# finalizer, the text conversion, and the classes and free functions whose names are fixed.
#   exports.sh ZQUtil.so
set -eu
# A build with the address sanitizer adds marks of its own to each variable, one that counts lines its counters' own.
strange=$(nm -D --defined-only "$1" | awk '$3 !~ /^(__odr_asan|__gcov_|mangle_path$)/ {print $3}' | c++filt | grep -vE \
  '^(MM_(Load|Unload|InitWrapper|TermWrapper|Init|Term)|ZQUtil_[A-Za-z0-9]+|iso_8859_1s_to_utf8s|tztable|(de)?registerFileMonitor)$' | grep -vE \
  '^((typeinfo|vtable|typeinfo name) for )?(ZQUtil|ZQNetwork|ZQAudioVolume|ZQScreen|ZQDateTime)(::|$)' | grep -vE \
  '^(threadConfigWrite|my_nvram_write_key|threadAutoScreenDim|threadRestartNetwork|threadFileMonitor|threadAboutDialog|setslaveadr|native_initialize|native_set_speaker_level)\(' | grep -vE \
  '^(ZQPopen|ZQCopyFile|ZQBasename|ZQString_appendCharacter|ZQTrimmedPathLength)\(' | grep -vE \
  '^(threadCheckForAvailableUpdates|HttpProcessResponse|DownloadUpdate|GetFilenameFromURL|RebootDevice|rebootRequired)\(' | grep -vE \
  '^(HttpDownload(Connected|Data|Error|Disconnected)|ApplyUpdatePackage|CopyUpdateToUpdatesDir|SendUpdateDownloadedSuccess)\(' ||
  true)
if [ -n "$strange" ]; then
  printf 'exported, and nobody may rely on it:\n%s\n' "$strange" >&2
  exit 1
fi
for name in MM_Load MM_Unload MM_InitWrapper MM_TermWrapper MM_Init MM_Term ZQUtil_constructor ZQUtil_finalizer \
  ZQUtil_BatteryPct iso_8859_1s_to_utf8s registerFileMonitor deregisterFileMonitor; do
  nm -D --defined-only "$1" | grep -q " T $name\$" || {
    echo "not exported: $name" >&2
    exit 1
  }
done
nm -D --defined-only "$1" | grep -q ' [DR] tztable$' || {
  echo "not exported: tztable" >&2
  exit 1
}
if nm -D --defined-only "$1" | c++filt | grep -E 'ZQUtil::(On|Save|Report)[A-Z]'; then
  echo "exported, though private" >&2
  exit 1
fi
readelf -d "$1" | grep -q NODELETE || {
  echo 'a host that lets the library go takes the code from under its threads' >&2
  exit 1
}

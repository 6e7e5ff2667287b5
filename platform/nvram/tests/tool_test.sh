#!/bin/sh
# What the shell tool prints, where, and its status. $1 is the tool.
tool=$1
folder=$(mktemp -d) || exit 1
trap 'rm -rf "$folder"' EXIT
export ZQ_NVRAM_CONFIG="$folder/fw_env.config"
printf '%s 0 0x1000\n%s 0 0x1000\n' "$folder/a" "$folder/b" > "$ZQ_NVRAM_CONFIG"
failed=0

# expect STATUS OUTPUT ERRORS WORDS...: runs the tool with the words.
expect() {
  status=$1 output=$2 errors=$3
  shift 3
  "$tool" "$@" > "$folder/out" 2> "$folder/err"
  got=$?
  printf '%s' "$output" > "$folder/wanted-out"
  printf '%s' "$errors" > "$folder/wanted-err"
  if [ "$got" != "$status" ] || ! cmp -s "$folder/out" "$folder/wanted-out" || ! cmp -s "$folder/err" "$folder/wanted-err"; then
    echo "nvram $*: status $got, wanted $status"
    diff "$folder/wanted-out" "$folder/out"
    diff "$folder/wanted-err" "$folder/err"
    failed=1
  fi
}
line='
'

expect 0 '' '' init
expect 3 '' "nvram: $folder/a holds a store already; nvram init --force empties it$line" init
expect 1 '' '' get lang
expect 0 '' '' list
expect 0 '' '' set lang 'de AT'
expect 0 "de AT$line" '' get lang
expect 0 '' '' set empty ''
expect 0 "$line" '' get empty
expect 0 '' '' set Zed 'a=b'
expect 0 '' '' set two "one${line}two"
expect 0 "one${line}two$line" '' get two
expect 0 "Zed=a=b${line}empty=${line}lang=de AT${line}two=one\\ntwo$line" '' list
expect 0 '' '' erase two
expect 0 '' '' erase two
expect 1 '' '' get two
expect 3 '' "nvram: cannot set a=b: the key has a \"=\"$line" set a=b c
expect 3 '' "nvram: cannot set big: the store is full$line" set big "$(head -c 5000 /dev/zero | tr '\0' x)"
expect 0 '' '' set --force -x
expect 0 "-x$line" '' get --force
expect 2 '' "nvram: what? (nvram --help says what there is)$line"
expect 2 '' "nvram: no command \"show\"; see nvram --help$line" show
expect 2 '' "nvram: get has too few words; see nvram --help$line" get
expect 2 '' "nvram: get has too many words; see nvram --help$line" get a b
expect 2 '' "nvram: set has too few words; see nvram --help$line" set a
expect 2 '' "nvram: init knows --force, not --hard$line" init --hard
expect 0 '' '' init --force
expect 0 '' '' list
rm "$folder/b"
expect 3 '' "nvram: $folder/a holds a store already; nvram init --force empties it$line" init
echo bad > "$folder/a"
echo bad > "$folder/b"
expect 3 '' "nvram: no good copy is left: $folder/a is shorter than its copy, $folder/b is shorter than its copy$line" list
expect 0 '' '' init
expect 0 '' '' list
echo nonsense > "$ZQ_NVRAM_CONFIG"
expect 3 '' "nvram: $ZQ_NVRAM_CONFIG: line 1 is no \"path offset size\"$line" get lang
rm "$ZQ_NVRAM_CONFIG"
expect 3 '' "nvram: cannot read $ZQ_NVRAM_CONFIG: No such file or directory$line" init

"$tool" --help | grep -q '^usage: nvram init' || { echo 'no help'; failed=1; }
"$tool" --help > /dev/full 2> /dev/null
[ $? = 3 ] || { echo 'a full standard output goes unnoticed'; failed=1; }
exit $failed

#!/usr/bin/env bash
# What cmake --install puts where, and that it works there.
#
# usage: InstallTest.sh BUILD-FOLDER WORD-SIZE
set -euo pipefail

build=$1 word_size=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "$*" >&2
  exit 1
}

prefix=$scratch/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
suffix=
((word_size == 64)) || suffix=$word_size

# The program finds the library beside it, through the link.
said=$("$prefix/bin/quorvel-host$suffix" info)
[[ $said == *CardReaderDevice* ]] || fail "not the component's info: $said"
[[ -x $prefix/bin/quorvel-scanner$suffix ]] || fail "no quorvel-scanner"

rule=$prefix/lib/udev/rules.d/61-quorvel.rules
grep -oE '/[^ "]*/(quorvel-frame-line|lines\.conf)' "$rule" | sort -u | while read -r path; do
  [[ -e $path ]] || fail "the rule names $path, which is not there"
done

# An administrator's configuration survives the next version.
echo 'ttyS0' >"$prefix/etc/quorvel/lines.conf"
cmake --install "$build" --prefix "$prefix" >/dev/null
[[ $(<"$prefix/etc/quorvel/lines.conf") == ttyS0 ]] || fail "lines.conf was overwritten"

# For a package: below a folder that is not part of any path, with the configuration in /etc.
DESTDIR=$scratch/root cmake --install "$build" --prefix /usr >/dev/null
[[ -e $scratch/root/etc/quorvel/lines.conf ]] || fail "no /etc/quorvel/lines.conf"
grep -q '"/usr/lib/quorvel/quorvel-frame-line --settings /etc/quorvel/lines.conf ' \
  "$scratch/root/usr/lib/udev/rules.d/61-quorvel.rules" || fail "the rule names other paths"

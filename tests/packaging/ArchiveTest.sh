#!/usr/bin/env bash
# The archives' own installer: both word sizes beside each other, and removed one after the other.
#
# usage: ArchiveTest.sh PACKAGING-FOLDER
set -euo pipefail

packaging=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix

fail() {
  echo "$*" >&2
  exit 1
}

# make_archive WORD-SIZE: laid out as an unpacked one; every file says what it is.
make_archive() {
  local archive=$scratch/archive$1 file
  for file in lib/quorvel/QuorvelNativeLin"$1".so lib/quorvel/quorvel-host \
    lib/quorvel/quorvel-scanner; do
    mkdir -p "$archive/${file%/*}"
    echo "$1 bits" >"$archive/$file"
  done
  for file in lib/quorvel/quorvel-frame-line share/man/man1/quorvel-host.1 \
    share/doc/quorvel/docs/pictures/one.png; do
    mkdir -p "$archive/${file%/*}"
    echo common >"$archive/$file"
  done
  cp "$packaging/61-quorvel.rules.in" "$packaging/lines.conf" "$archive"
  install -m 755 "$packaging/install-archive" "$archive/install"
}

expect() {
  [[ $(<"$1") == "$2" ]] || fail "$1 is not $2"
}

expect_common() {
  expect "$prefix/lib/quorvel/quorvel-frame-line" common
  expect "$prefix/share/doc/quorvel/docs/pictures/one.png" common
  grep -q "$prefix/lib/quorvel/quorvel-frame-line --settings $prefix/etc/quorvel/lines.conf" \
    "$prefix/lib/udev/rules.d/61-quorvel.rules" || fail "the rule names other paths"
}

make_archive 32
make_archive 64
mkdir -p "$prefix/share/man"
echo mine >"$prefix/share/kept"

"$scratch/archive32/install" "$prefix" >/dev/null
"$scratch/archive64/install" "$prefix" >/dev/null
expect "$prefix/bin/quorvel-host32" '32 bits'
expect "$prefix/bin/quorvel-scanner" '64 bits'
expect "$prefix/lib/quorvel32/QuorvelNativeLin32.so" '32 bits'
expect_common

echo '#mine' >"$prefix/etc/quorvel/lines.conf"
"$scratch/archive32/install" "$prefix" >/dev/null
expect "$prefix/etc/quorvel/lines.conf" '#mine'

"$scratch/archive32/install" --remove "$prefix" >/dev/null
[[ ! -e $prefix/lib/quorvel32 && ! -L $prefix/bin/quorvel-host32 ]] || fail "32 bits are left"
expect "$prefix/bin/quorvel-host" '64 bits'
expect_common

"$scratch/archive64/install" --remove "$prefix" >/dev/null
left=$(cd "$prefix" && find . -mindepth 1 | sort | paste -sd ' ')
[[ $left == './bin ./etc ./etc/quorvel ./etc/quorvel/lines.conf ./lib ./share ./share/kept ./share/man' ]] ||
  fail "left: $left"

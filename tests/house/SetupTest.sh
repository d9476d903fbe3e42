#!/usr/bin/env bash
# scripts/setup against a package manager of the test's own: a machine on which valgrind is missing
# and can only be had together with an older linux-libc-dev.
set -euo pipefail

setup=$(dirname "$0")/../../scripts/setup
stubs=$(mktemp -d)
trap 'rm -rf "$stubs"' EXIT

cat >"$stubs/apt-get" <<'END'
#!/usr/bin/env bash
case "$*" in
  *-s*Dir::State::status=/dev/null*) ;;
  *-s*--allow-downgrades*) echo 'Inst linux-libc-dev [6.1.170-1] (6.1.158-1 x [amd64])' ;;
  *-s*) echo 'E: held broken packages' >&2 && exit 100 ;;
  *install*) echo 'pmstatus:valgrind:40.0:x' && touch "${0%/*}/installed" ;;
esac
END
cat >"$stubs/dpkg-query" <<'END'
#!/usr/bin/env bash
# Everything that is ever asked for is there, but valgrind.
eval "$(sed -nE '/^[a-z]+_packages=\(/,/\)$/p' "${SETUP:?}")"
for name in "${build_packages[@]}" "${test_packages[@]}" "${lint_packages[@]}"; do
  [[ $name != valgrind || -e ${0%/*}/installed ]] || continue
  [[ $name == *:i386 ]] || name+=:amd64
  echo "installed $name"
done
END
cat >"$stubs/apt-cache" <<'END'
#!/usr/bin/env bash
[[ $* != *show* ]] || printf 'Package: valgrind\nArchitecture: amd64\n'
END
cat >"$stubs/sudo" <<'END'
#!/usr/bin/env bash
[[ $1 == -n ]] || exec "$@"
END
cat >"$stubs/dpkg" <<'END'
#!/usr/bin/env bash
case $1 in
  --print-architecture) echo amd64 ;;
  --print-foreign-architectures) echo i386 ;;
  --compare-versions) [[ $(printf '%s\n' "$2" "$4" | sort -V | head -n 1) == "$4" ]] ;;
esac
END
chmod +x "$stubs"/*
export PATH=$stubs:$PATH SETUP=$setup

expect() {
  local what=$1 said=$2
  if [[ $said != *"$what"* ]]; then
    printf 'expected "%s" in:\n%s\n' "$what" "$said" >&2
    exit 1
  fi
}

on_terminal() {
  printf '%s\n' "$1" | script -qec "$setup test" /dev/null || true
}

said=$("$setup" test </dev/null 2>&1)
expect 'linux-libc-dev: 6.1.170-1 -> 6.1.158-1' "$said"
expect 'going on' "$said"
expect 'installing: 40%' "$said"
[[ -e $stubs/installed ]]

expect 'nothing to install' "$("$setup" test </dev/null 2>&1)"

rm "$stubs/installed"
expect 'nothing was installed' "$(on_terminal n)"
[[ ! -e $stubs/installed ]]

expect 'done' "$(on_terminal y)"
[[ -e $stubs/installed ]]

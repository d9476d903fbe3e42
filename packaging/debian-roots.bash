# shellcheck shell=bash
#
# For scripts that work in folders with a Debian system each: where these come from, and how commands
# run in them. To be sourced. Where a function fails, $root_problem says why.

roots=${QUORVEL_ROOTS:-$PWD/build/roots}
root_problem=

# become_root COMMAND...: returns where this is root. Otherwise starts the command, which is to be the
# calling script itself, as root of a namespace.
become_root() {
  local tool said namespaces=(--mount --propagation private)
  for tool in unshare mount chroot; do
    command -v "$tool" >/dev/null || { root_problem="$tool is missing" && return 1; }
  done
  ((EUID == 0)) || namespaces+=(--user --map-root-user)
  said=$(unshare "${namespaces[@]}" mount -n -t tmpfs tmpfs /mnt 2>&1) || {
    root_problem="no namespace to be had${said:+ (${said##*: })}; scripts/in-private-dev --check says more"
    return 1
  }
  ((EUID == 0)) || exec unshare "${namespaces[@]}" "$@"
}

# Prints the addresses at which to look for a release, the likelier first: that of this machine's
# package lists, and the archive of old releases that a mirror may have beside it.
archives() {
  local address=${QUORVEL_DEBIAN_MIRROR:-}
  if [[ -z $address ]]; then
    # shellcheck disable=SC2016  # apt-get's own variables
    address=$(apt-get indextargets --format '$(LABEL) $(REPO_URI)' 2>/dev/null |
      awk '$1 == "Debian" { print $2; exit }')
  fi
  [[ -n $address ]] || return 0
  echo "${address%/}"
  echo "${address%/debian*}/debian-archive/debian"
}

# enter_root ROOT [FOLDER=PLACE]... -- COMMAND...: runs the command in the root, with /proc, the usual
# devices, terminals of its own, and folders of this machine in their places.
enter_root() {
  # shellcheck disable=SC2016  # expanded by the inner shell
  unshare --mount --propagation private bash -euc '
    root=$1
    shift
    # A mount of its own, so that a program in it can have mounts of its own, too.
    mount --bind "$root" "$root"
    mkdir -p "$root/proc" "$root/dev"
    mount --rbind /proc "$root/proc"
    mount -t tmpfs -o mode=755 tmpfs "$root/dev"
    mkdir "$root/dev/pts" "$root/dev/shm"
    for device in null zero full random urandom tty; do
      touch "$root/dev/$device"
      mount --bind "/dev/$device" "$root/dev/$device"
    done
    ln -s pts/ptmx "$root/dev/ptmx"
    ln -s /proc/self/fd "$root/dev/fd"
    mount -t devpts -o newinstance,ptmxmode=0666 devpts "$root/dev/pts"
    mount -t tmpfs tmpfs "$root/dev/shm"
    while [[ $1 != -- ]]; do
      mkdir -p "$root${1#*=}"
      mount --bind "${1%%=*}" "$root${1#*=}"
      shift
    done
    shift
    exec chroot "$root" /usr/bin/env -i HOME=/root LC_ALL=C.UTF-8 \
      PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive \
      ${DISPLAY:+"DISPLAY=$DISPLAY"} "$@"
  ' bash "$@"
}

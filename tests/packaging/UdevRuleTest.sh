#!/usr/bin/env bash
# What udev makes of the installed rule, for devices that do not exist.
#
# usage: in-private-dev UdevRuleTest.sh BUILD-FOLDER
#
# In mounts of its own: udevadm reads rules from /run and leaves its records there.
set -euo pipefail

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" --component common >/dev/null
conf=$prefix/etc/quorvel/lines.conf
helper=$prefix/lib/quorvel/quorvel-frame-line

mount -n -t tmpfs tmpfs /run
mkdir -p /run/udev/rules.d
cp "$prefix/lib/udev/rules.d/61-quorvel.rules" /run/udev/rules.d/

usb=/devices/pci0000:00/0000:00:14.0/usb1/1-2

# describe VENDOR PRODUCT SERIAL TTY: a USB device with a serial port.
describe() {
  cat <<END
P: $usb
E: DEVNAME=/dev/bus/usb/001/005
E: DEVTYPE=usb_device
E: SUBSYSTEM=usb
N: bus/usb/001/005
A: idVendor=$1\n
A: idProduct=$2\n
A: serial=$3\n

P: $usb/1-2:1.0
E: DEVTYPE=usb_interface
E: SUBSYSTEM=usb
A: bInterfaceNumber=00\n
A: bInterfaceClass=02\n
A: bInterfaceSubClass=02\n
A: bInterfaceProtocol=01\n

P: $usb/1-2:1.0/tty/$4
E: DEVNAME=/dev/$4
E: MAJOR=188
E: MINOR=0
E: SUBSYSTEM=tty
N: $4

P: /devices/platform/serial8250/tty/ttyS1
E: DEVNAME=/dev/ttyS1
E: SUBSYSTEM=tty
N: ttyS1
END
}

# What udev says of a device, as it is plugged in.
udev_says() {
  rm -rf /run/udev/data /run/udev/tags /run/udev/links
  umockdev-run --device="$prefix/devices" -- udevadm test --action=add "/sys$1" 2>&1
}

says=
# plug VENDOR PRODUCT SERIAL TTY
plug() {
  describe "$@" >"$prefix/devices"
  says=$(udev_says "$usb/1-2:1.0/tty/$4")
}

failures=0
fail() {
  echo "$* in what udev says:" >&2
  printf '%s\n' "$says" | grep -E 'quorvel|^[A-Z_]+=' >&2
  failures=$((failures + 1))
}
expect() {
  grep -qE -- "$1" <<<"$says" || fail "missing: $1"
}
expect_not() {
  ! grep -qE -- "$1" <<<"$says" || fail "unwanted: $1"
}

expect_treated() {
  local device=$1 end=$2
  expect '^CURRENT_TAGS=.*:uaccess:'
  expect '61-quorvel.rules:[0-9]+ GROUP [0-9]+'
  expect '61-quorvel.rules:[0-9]+ MODE 0660'
  expect '^ID_MM_PORT_IGNORE=1$'
  expect '^ID_MM_DEVICE_IGNORE=1$'
  expect "^run: '$helper --end $end $device'$"
}
expect_left_alone() {
  expect '^DEVNAME='
  expect_not ':uaccess:|ID_MM_|run: .*quorvel'
}

echo "a scanner maker's port"
plug 0c2e 0b61 S1 ttyACM0
expect_treated /dev/ttyACM0 cr
says=$(udev_says "$usb")
expect '^ID_MM_DEVICE_IGNORE=1$'

echo "a generic adapter, which nobody has named"
plug 0403 6001 S2 ttyUSB0
expect_left_alone
says=$(udev_says "$usb")
expect_not 'ID_MM_'

echo "a port of the machine, which nobody has named"
says=$(udev_says /devices/platform/serial8250/tty/ttyS1)
expect_left_alone

cat >"$conf" <<'END'
usb:05f9 leave
usb:0403:6001:S2  name=ttyUSB100 end=lf  # the till
usb:0403:6001:S  end=etx
usb:0c2e end=tab
ttyS1 end=7
usb:1a86 end=nothing
END

echo "the adapter that is named"
plug 0403 6001 S2 ttyUSB0
expect_treated /dev/ttyUSB0 lf
expect '^DEVLINKS=(.* )?/dev/ttyUSB100( |$)'

echo "another of its kind"
plug 0403 6001 S3 ttyUSB0
expect_left_alone

echo "a maker's port with an end byte of its own"
plug 0c2e 0b61 S1 ttyACM0
expect_treated /dev/ttyACM0 tab

echo "a maker's port that is to be left alone"
plug 05f9 4204 S4 ttyACM0
expect_left_alone

echo "a port of the machine that is named"
says=$(udev_says /devices/platform/serial8250/tty/ttyS1)
expect_treated /dev/ttyS1 7

echo "a line that is wrong"
plug 1a86 7523 S5 ttyUSB0
expect_left_alone
expect 'lines.conf, line 6: no end byte: end=nothing'

exit "$((failures > 0))"

#!/bin/sh
# Mounts and ejects a card image through the real udisksd, on a system bus of its own. Needs root, udev and
# loop devices; says so and ends with 77 where one is missing.
#
#   tests/platform/real-udisks-check.sh build/debug/tests/platform/desktop_platform_tests
set -eu

tests=${1:?usage: real-udisks-check.sh path/to/desktop_platform_tests}
udevd=/lib/systemd/systemd-udevd
udisksd=/usr/libexec/udisks2/udisksd

skip() {
    echo "skipped: $1"
    exit 77
}
[ "$(id -u)" = 0 ] || skip "not root"
[ -x "$udevd" ] || skip "no systemd-udevd"
[ -x "$udisksd" ] || skip "no udisksd"
command -v mkfs.ext4 >/dev/null || skip "no mkfs.ext4"
command -v dbus-daemon >/dev/null || skip "no dbus-daemon"

work=$(mktemp -d)
started=
loop=
finish() {
    [ -z "$loop" ] || umount "$loop" 2>/dev/null || true
    [ -z "$loop" ] || losetup -d "$loop" 2>/dev/null || true
    for process in $started; do kill "$process" 2>/dev/null || true; done
    rm -rf "$work"
}
trap finish EXIT
trap 'exit 1' INT TERM

# Waits until a command succeeds; the limit only keeps a broken machine from hanging.
await() {
    for _ in $(seq 100); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.1
    done
    echo "failed: waited in vain for: $*" >&2
    exit 1
}

mkdir -p "$work/card/DCIM/100KELVA"
echo photo >"$work/card/DCIM/100KELVA/KLV_0001.JPG"
truncate -s 64M "$work/card.img"
mkfs.ext4 -q -L KELVA_CARD -d "$work/card" "$work/card.img"

cat >"$work/bus.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:path=$work/bus</listen>
  <policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
CONF
dbus-daemon --config-file="$work/bus.conf" --nofork &
started="$started $!"
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$work/bus"

if ! udevadm control --ping 2>/dev/null; then
    "$udevd" &
    started="$started $!"
    await udevadm control --ping
fi
await test -S "$work/bus"
"$udisksd" --replace >"$work/udisksd.log" 2>&1 &
started="$started $!"
await udisksctl status

attach() {
    loop=$(losetup --find --show "$1" 2>/dev/null) || { loop=; skip "no loop device"; }
    udevadm trigger --settle --name-match="$loop"
    await udisksctl info -b "$loop"
}

attach "$work/card.img"
KELVARA_TEST_MOUNT="udisksctl mount -b $loop" "$tests" --gtest_filter='RealDisksTest.*'
losetup -d "$loop"

# A card's own file system, through FUSE, because that works where the kernel has no driver for it.
if ! command -v mkfs.exfat >/dev/null || ! command -v mount.exfat-fuse >/dev/null; then
    echo "skipped: the exFAT card, without exfatprogs or exfat-fuse"
    exit 0
fi
place=/mnt/KELVA_CARD
[ ! -e "$place" ] || skip "$place exists"
mkdir "$place"
truncate -s 64M "$work/exfat.img"
mkfs.exfat -L KELVA_CARD "$work/exfat.img" >/dev/null
attach "$work/exfat.img"
mount.exfat-fuse "$loop" "$place" >/dev/null
mkdir "$place/DCIM"
umount "$place"
status=0
KELVARA_TEST_MOUNT="mount.exfat-fuse $loop $place" "$tests" --gtest_filter='RealDisksTest.*' || status=$?
umount "$place" 2>/dev/null || true
rmdir "$place"
exit "$status"

#!/usr/bin/env bash
# Destinations that fail: destinations.sh KELVARA_CLI. Full in the middle of a file, read-only, deleted meanwhile,
# reached through a link, on another file system.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
card=$work/card

say "A folder that may not be written to"
photos "$card" 3 1000
mkdir "$work/locked"
chmod 555 "$work/locked"
code 1 copy_as_nobody "$card" "$work/locked"
expect copied 0 failed 3
told "Permission denied"
code 1 copy_as_nobody "$card" "$work/locked/below"
told "Permission denied"

say "Links to folders and to nothing"
mkdir "$work/real"
ln -s real "$work/link"
code 0 copy "$card" "$work/link"
complete "$card" "$work/real"
ln -s nowhere "$work/dangling"
code 1 copy "$card" "$work/dangling"
[[ ! -e $work/nowhere ]] || fail "a dangling link was followed into a new folder"
mkdir "$work/trap"
echo precious >"$work/elsewhere"
ln -s ../elsewhere "$work/trap/DSC_00001.NEF" # its target's size differs
ln -s ../elsewhere "$work/trap/DSC_00002.NEF.partial"
code 0 copy "$card" "$work/trap"
[[ $(cat "$work/elsewhere") == precious ]] || fail "a copy was written through a link"
cmp "$card/DSC_00001.NEF" "$work/trap/DSC_00001-1.NEF" || fail "the copy beside the link is wrong"

say "The folder goes while it is copied into"
rm -r "$card"
photos "$card" 40 4000000
delete_target() { rm -rf "$work/going"; }
code 1 paused "$card" "$work/going" delete_target
(($(value failed) > 0)) || fail "nobody noticed"
told "The destination folder is gone. Was its drive removed?"
code 0 copy "$card" "$work/going"
complete "$card" "$work/going"

need_root
say "Full in the middle of a file"
rm -r "$card"
photos "$card" 300 100 JPG # 300 times 4 KB on the disk: the sizes fit, the blocks do not
photos "$card" 1 900000 NEF
mounted "$work/small" -t tmpfs -o size=1600k tmpfs
code 1 copy "$card" "$work/small"
(($(value failed) > 0)) || fail "everything fitted"
told "No space left on device"
no_partials "$work/small"
whole "$card" "$work/small"
there=$(find "$work/small" -type f | wc -l)
mount -o remount,size=8m "$work/small"
code 0 copy "$card" "$work/small"
expect skipped "$there" copied $((301 - there)) failed 0
complete "$card" "$work/small"

say "Too small from the beginning"
photos "$work/large" 4 1000000
mounted "$work/tiny" -t tmpfs -o size=2m tmpfs
code 1 copy "$work/large" "$work/tiny"
told "Not enough space: 4 MB needed, "
[[ -z $(ls "$work/tiny") ]] || fail "something was begun"

say "Read-only"
mounted "$work/readonly" -t tmpfs -o ro tmpfs
code 1 copy "$card" "$work/readonly"
told "Read-only file system"
code 1 copy "$card" "$work/readonly/below"
told "Read-only file system"

say "To another file system and back"
mounted "$work/other" -t tmpfs -o size=64m tmpfs
code 0 copy "$card" "$work/other/there"
complete "$card" "$work/other/there"
code 0 copy "$work/other/there" "$work/back"
complete "$card" "$work/back"
[[ $(stat -c %Y "$card/DSC_00001.NEF") == $(stat -c %Y "$work/back/DSC_00001.NEF") ]] || fail "the date was lost"

#!/usr/bin/env bash
# Names that a card's file system takes otherwise: names.sh KELVARA_CLI. On any file system, names that are too
# long, not UTF-8 or differ only in case; on an exFAT image, which needs root, loop devices, exfatprogs and
# exfat-fuse, also its own folding of case, forbidden characters and whole seconds.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
card=$work/card

say "Names that differ only in case, and bytes that are no text"
mkdir -p "$card/1" "$card/2" "$card/3"
echo one >"$card/1/DSC_1.NEF"
echo two >"$card/2/dsc_1.nef"
echo three >"$card/3/$(printf 'caf\xe9.JPG')"
code 0 copy "$card" "$work/target"
expect copied 3 failed 0 renamed 1
[[ $(cat "$work"/target/* | sort | tr '\n' ' ') == "one three two " ]] || fail "not the three"

say "A name so long that no ending fits behind it"
long=$(printf 'x%.0s' {1..251}).NEF
echo long >"$card/1/$long"
code 0 copy "$card" "$work/target"
expect copied 1 skipped 3 failed 0
cmp "$card/1/$long" "$work/target/$long"
rm "$card/1/$long"

need_root
for tool in mkfs.exfat mount.exfat-fuse losetup; do
  command -v "$tool" >/dev/null || skip "the rest: no $tool"
done
truncate -s 64M "$work/image"
mkfs.exfat "$work/image" >/dev/null
loop=$(losetup --find --show "$work/image" 2>/dev/null) || skip "the rest: no loop devices"
undo+=("losetup -d '$loop'")
mkdir "$work/exfat"
mount.exfat-fuse "$loop" "$work/exfat" >/dev/null 2>&1 || skip "the rest: exFAT can't be mounted"
undo+=("umount '$work/exfat'")

say "exFAT: case, dates, twice"
touch -d '2024-03-07 12:00:00.75 UTC' "$card/1/DSC_1.NEF"
rm -r "$card/3"
code 0 copy "$card" "$work/exfat/photos"
expect copied 2 failed 0 renamed 1
[[ $(cat "$work"/exfat/photos/* | sort | tr '\n' ' ') == "one two " ]] || fail "not the two"
[[ $(stat -c %Y "$work/exfat/photos/DSC_1.NEF") == 1709812800 ]] || fail "the date was lost"
code 0 copy "$card" "$work/exfat/photos"
expect copied 0 skipped 2 failed 0

say "exFAT: a file of another size under the name in other case"
mkdir "$work/exfat/other"
echo "somebody else's" >"$work/exfat/other/dsc_1.NEF"
code 0 copy "$card" "$work/exfat/other"
[[ $(cat "$work/exfat/other/dsc_1.NEF") == "somebody else's" ]] || fail "overwritten"
expect copied 2 failed 0

say "exFAT: characters it has no place for"
echo colon >"$card/1/12:30.NEF"
code 1 copy "$card" "$work/exfat/photos"
expect copied 0 skipped 2 failed 1
told "12:30.NEF"
no_partials "$work/exfat"

say "exFAT: from the card, where names are found in any case"
code 0 copy "$work/exfat/photos" "$work/back"
expect copied 2 failed 0

say "exFAT: a name in other case neither deletes nor takes the sidecar of the shot"
cp "$card/1/DSC_1.NEF" "$work/exfat/DSC_1.JPG"
echo stars | tee "$work/exfat/DSC_1.NEF" >"$work/exfat/DSC_1.xmp"
code 1 "$cli" delete --permanently "$work/exfat/dsc_1.nef" >/dev/null 2>"$said"
[[ $(ls "$work"/exfat/DSC_1.* | wc -l) == 3 ]] || fail "something is gone"
say "exFAT held"

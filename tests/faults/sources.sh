#!/usr/bin/env bash
# Sources that change or can't be read while they are copied: sources.sh KELVARA_CLI.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
card=$work/card
photos "$card" 40 4000000

say "One goes, one grows, one shrinks, one turns into a folder, while others are copied"
disturb() {
  rm "$card/DSC_00037.NEF"
  head -c 1000 /dev/urandom >>"$card/DSC_00038.NEF"
  truncate -s 5000 "$card/DSC_00039.NEF"
  rm "$card/DSC_00040.NEF"
  mkdir "$card/DSC_00040.NEF"
}
code 1 paused "$card" "$work/target" disturb
expect copied 36 failed 4
told "DSC_00037.NEF"
told "The original is gone. Was the card removed?"
told "The copy's size doesn't match the original."
told "Is a directory"
no_partials "$work/target"
whole "$card" "$work/target"
[[ $(find "$work/target" -type f | wc -l) == 36 ]] || fail "a failed file has a copy"

say "It is read again when the card stands still"
code 0 copy "$card" "$work/target"
expect copied 2 skipped 36 failed 0

say "The whole card goes"
vanish() { mv "$card" "$card.pulled"; }
mv "$work/target" "$work/first"
code 1 paused "$card" "$work/target" vanish
(($(value failed) > 0)) || fail "nobody noticed"
no_partials "$work/target"
mv "$card.pulled" "$card"
whole "$card" "$work/target"
code 0 copy "$card" "$work/target"
rmdir "$card/DSC_00040.NEF"
complete "$card" "$work/target"

say "One may not be read"
rm -rf "$card" "$work/target"
photos "$card" 3 1000
chmod 000 "$card/DSC_00002.NEF"
mkdir "$work/target"
code 1 copy_as_nobody "$card" "$work/target" own
expect copied 2 failed 1
told "DSC_00002.NEF"
told "Permission denied"
no_partials "$work/target"

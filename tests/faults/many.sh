#!/usr/bin/env bash
# 20,000 files in a hundred folders, twice: many.sh KELVARA_CLI [COUNT].
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
count=${2:-20000}
python3 - "$work/card" "$count" <<'PYTHON'
import os, sys
card, count = sys.argv[1], int(sys.argv[2])
for i in range(count):
    folder = f"{card}/DCIM/{100 + i // (count // 100):03}KELVA"
    if i % (count // 100) == 0:
        os.makedirs(folder)
    with open(f"{folder}/DSC_{i % 10000:04}.JPG", "wb") as photo:
        photo.write(f"photo {i}".encode() * (i % 50 + 1))
PYTHON

code 0 copy "$work/card" "$work/target"
expect copied "$count" failed 0 skipped 0
# Every photo of the card is there, whatever number it bears.
sums() { (cd "$1" && find . -type f -print0 | xargs -0 sha256sum | cut -d' ' -f1 | sort); }
cmp <(sums "$work/card") <(sums "$work/target") || fail "not the same photos"
say "$count files in $(value seconds) s, $(value renamed) of them under another number"
code 0 copy "$work/card" "$work/target"
expect copied 0 skipped "$count" failed 0

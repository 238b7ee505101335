#!/usr/bin/env bash
# Exports that go wrong: exported.sh KELVARA_CLI [ROUNDS]. Killed at random moments, onto a full disk, of photos that
# can't be read or go meanwhile. Whatever bears a final name is byte for byte what an undisturbed export made of it.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
rounds=${2:-5}
count=24
card=$work/card
verb=export

# Pictures whose lines repeat: small files that take a while to write as JPEGs, which are far larger. They
# are PNG files by content, which needs nothing but Python to make.
mkdir "$card"
python3 - "$card" "$count" <<'PYTHON'
import random, struct, sys, zlib
card, count = sys.argv[1], int(sys.argv[2])
width, height = 900, 600
chunk = lambda kind, data: struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
for i in range(1, count + 1):
    lines = (b"\0" + random.Random(i).randbytes(width * 3)) * height
    with open(f"{card}/DSC_{i:05}.jpg", "wb") as photo:
        photo.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)))
        photo.write(chunk(b"IDAT", zlib.compress(lines)) + chunk(b"IEND", b""))
PYTHON

started=$(date +%s%N)
code 0 copy "$card" "$work/undisturbed"
lasts=$((($(date +%s%N) - started) / 1000))
expect exported "$count" failed 0
no_partials "$work/undisturbed"

say "Killed"
most=0
for ((round = 1; round <= rounds; ++round)); do
  target=$work/target
  "$cli" export "$card" "$target" >/dev/null 2>&1 &
  kill_within "$lasts" $!
  there=0
  if [[ -d $target ]]; then
    whole "$work/undisturbed" "$target"
    there=$(find "$target" -name '*.jpg' | wc -l)
  fi
  ((there <= most)) || most=$there
  rm -f "$target"/*.jpg
  code 0 copy "$card" "$target" # over what was left half done
  complete "$work/undisturbed" "$target"
  rm -r "$target"
done
((most > 0)) || fail "no kill came in the middle of an export"
say "$rounds kills, up to $most of $count pictures there: nothing torn"

say "One may not be read, one is damaged, one goes while others are exported"
echo "no picture" >"$card/DSC_00002.jpg"
last=$card/$(printf 'DSC_%05d.jpg' "$count")
vanish() { rm "$last"; }
code 1 paused "$card" "$work/target" vanish
expect exported $((count - 2)) failed 2
told "Couldn't read DSC_00002.jpg."
told "Couldn't read ${last##*/}."
no_partials "$work/target"
whole "$work/undisturbed" "$work/target"
chmod 000 "$card/DSC_00003.jpg"
mkdir "$work/own"
code 1 copy_as_nobody "$card" "$work/own" own
told "Couldn't read DSC_00003.jpg."

need_root
say "Full: the originals' sizes fit, the pictures do not"
mounted "$work/small" -t tmpfs -o size=1m tmpfs
code 1 copy "$card" "$work/small"
(($(value failed) > 2)) || fail "everything fitted"
told "Couldn't create a JPEG for DSC_000"
no_partials "$work/small"
whole "$work/undisturbed" "$work/small"

say "Too small from the beginning"
mounted "$work/tiny" -t tmpfs -o size=40k tmpfs
code 1 copy "$card" "$work/tiny"
told "Not enough space: "
[[ -z $(ls "$work/tiny") ]] || fail "something was begun"

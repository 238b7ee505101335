#!/usr/bin/env bash
# Exports that go wrong: exported.sh KELVARA_CLI [ROUNDS]. Killed at random moments, onto a full disk, of photos that
# can't be read or go meanwhile. Whatever bears a final name is byte for byte what an undisturbed export made of it.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
rounds=${2:-5}
count=24
card=$work/card
verb=export

# Noise in a JPEG takes a while to read and write. Without a program that makes one there is nothing to export.
command -v python3 >/dev/null && command -v cjpeg >/dev/null || skip "no cjpeg"
mkdir "$card"
for ((i = 1; i <= count; ++i)); do
  python3 -c '
import random, sys
sys.stdout.buffer.write(b"P6 900 600 255\n" + random.Random(int(sys.argv[1])).randbytes(900 * 600 * 3))' "$i" |
    cjpeg -quality 90 >"$card/$(printf 'DSC_%05d.jpg' "$i")"
done

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
  process=$!
  moment=$((lasts * (RANDOM * 32768 + RANDOM) / 1073741824))
  sleep "$((moment / 1000000)).$(printf '%06d' $((moment % 1000000)))"
  kill -KILL "$process" 2>/dev/null || true
  wait "$process" 2>/dev/null || true
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
say "Full"
mounted "$work/small" -t tmpfs -o size=1m tmpfs
chmod 644 "$card/DSC_00003.jpg"
code 1 copy "$card" "$work/small"
told "Not enough space: "
for ((i = 5; i <= count; ++i)); do rm -f "$card/$(printf 'DSC_%05d.jpg' "$i")"; done
rm "$card/DSC_00002.jpg"
# Three originals are said to fit, and three pictures in the best quality do not.
mount -o remount,size=$((3 * $(stat -c %s "$card/DSC_00001.jpg") / 1024 + 40))k "$work/small"
code 1 copy "$card" "$work/small" --quality 1
(($(value failed) > 0)) || fail "everything fitted"
told "Couldn't create a JPEG for DSC_0000"
no_partials "$work/small"

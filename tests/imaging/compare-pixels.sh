#!/usr/bin/env bash
# Compares the decoder's pixels with libvips': compare-pixels.sh DECODE_FILE SAMPLECARD. Both read JPEGs by the
# same library but turn, convert and scale on their own. Ends with 77 where libvips is missing.
set -euo pipefail
decode=$1 samplecard=$2
command -v vips >/dev/null || { echo "libvips-tools is missing: nothing compared"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failures=0

# expect WHAT VALUE MOST
expect() {
  local verdict=ok
  awk "BEGIN { exit !($2 <= $3) }" || { verdict=FAILED; failures=$((failures + 1)); }
  printf '%-6s %-58s %9.3f, at most %s\n' "$verdict" "$1" "$2" "$3"
}

# compare WHAT REFERENCE MEAN MAX: ours.ppm against it, in 8-bit steps.
compare() {
  vips subtract ours.ppm "$2" signed.v
  vips abs signed.v difference.v
  expect "$1, mean" "$(vips avg difference.v)" "$3"
  expect "$1, most" "$(vips max difference.v)" "$4"
}

profile() { vipsheader -f icc-profile-data "$1" 2>/dev/null; }
to_screen=(srgb --intent relative --black-point-compensation)

# The encoder of its HEICs keeps memory to the end.
ASAN_OPTIONS=detect_leaks=0 "$samplecard" card --scale 0.1 >/dev/null
card=card/DCIM/101KELVA

# The same library, the same pixels: anything but equality is a wrong turn.
for file in "$card"/ORIENT_*.JPG "$card"/{GREY0004,PROG0006}.JPG "$card"/TURN0007.HEIC; do
  "$decode" "$file" 0 ours.ppm
  vips autorot "$file" upright.v
  vips colourspace upright.v reference.v srgb
  compare "${file##*/}" reference.v 0 0
done

# Both round to 8 bits, ours within the transform and theirs after it; ten bits are rounded too.
profile "$card/_WIDE001.JPG" | base64 -d >adobe.icc
for name in _WIDE001.JPG _WIDE002.JPG P3_0003.JPG KEL_0451.HIF; do
  "$decode" "$card/$name" 0 ours.ppm
  case $name in
  _WIDE002*) vips icc_transform "$card/$name" reference.v "${to_screen[@]}" --input-profile adobe.icc ;;
  *.HIF) vips colourspace "$card/$name" reference.v srgb ;;
  *) vips icc_transform "$card/$name" reference.v "${to_screen[@]}" --embedded ;;
  esac
  compare "$name" reference.v 0.3 2
done

# Inks without a profile: what each lets through, multiplied.
"$decode" "$card/CMYK0005.JPG" 0 ours.ppm
vips invert "$card/CMYK0005.JPG" light.v
vips extract_band light.v colours.v 0 --n 3
vips extract_band light.v black.v 3
vips multiply colours.v black.v product.v
vips linear product.v reference.v 0.00392156862745 0
compare CMYK0005.JPG reference.v 0.3 1

# Rings ever finer towards the edges: to a half by the same filter, and for JPEG to an eighth, which is an average
# over each square. Fine rings must become even grey, whose spread is 90 when pixels are only picked out.
vips zone rings.v 1024 1024 --uchar
vips pngsave rings.v rings.png
vips jpegsave rings.v rings.jpg --Q 97
"$decode" rings.png 512 ours.ppm
vips cast rings.v exact.v float # else what the filter overshoots is cut off between its two passes
vips resize exact.v half.v 0.5 --kernel lanczos3
vips linear half.v rounded.v 1 0.5
vips cast rounded.v reference.v uchar
compare "rings.png to a half" reference.v 0.05 8 # at the very edges theirs repeats pixels, ours takes fewer
"$decode" rings.jpg 128 ours.ppm
vips shrink rings.v reference.v 8 8
compare "rings.jpg to an eighth" reference.v 0.3 1
for file in rings.png rings.jpg; do
  for side in 129 250 300 511; do
    "$decode" "$file" "$side" ours.ppm
    vips extract_area ours.ppm corner.v 0 0 $((side / 8)) $((side / 8))
    expect "$file to $side, spread of the finest rings" "$(vips deviate corner.v)" 6
  done
done

# White to the very edge, whatever the ratio.
vips black dark.v 1001 667
vips invert dark.v white.v
vips pngsave white.v white.png
vips jpegsave white.v white.jpg
for file in white.png white.jpg; do
  for side in 256 333 512 1000; do
    "$decode" "$file" "$side" ours.ppm
    expect "$file to $side, darkness" "$(awk "BEGIN { print 255 - $(vips min ours.ppm) }")" 0
  done
done

# A picture turned and scaled, against a sharper filter.
"$decode" "$card/ORIENT_6.JPG" 100 ours.ppm
vips thumbnail "$card/ORIENT_6.JPG" reference.v 100 --height 100
compare "ORIENT_6.JPG to 100" reference.v 3 60

((failures == 0)) || { echo "$failures comparisons failed"; exit 1; }

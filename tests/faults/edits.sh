#!/usr/bin/env bash
# Kills programs that edit photos at random moments, two at a time on one file: edits.sh KELVARA_CLI [ROUNDS].
# At no time is the file torn, and it has every edit that a program said it has saved.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
rounds=${2:-10}
edits=$work/data/Edits.json
for card in one two; do photos "$work/$card" 300 10 JPG; done

# editor CLI CARD EDITS: gives photo 7 of the card a contrast of 7, and so on, and notes what has been saved.
cat >"$work/editor" <<'EDITOR'
for photo in "$2"/*.JPG; do
  number=${photo##*_}
  "$1" edits "$photo" --set "contrast=$((10#${number%.JPG} % 100 + 1))" --file "$3" || exit
  echo "$photo" >>"$2/saved"
done
EDITOR
# has_saved CARD...: prints how many edits there are to be found.
has_saved() {
  python3 - "$edits" "$@" <<'PYTHON'
import json, pathlib, sys
edits = json.loads(pathlib.Path(sys.argv[1]).read_text()) if pathlib.Path(sys.argv[1]).exists() else {}
saved = [photo for card in sys.argv[2:] for photo in pathlib.Path(card, "saved").read_text().split()]
for photo in saved:
    found, wanted = edits.get(f"file://{photo[:-4]}.xmp"), {"contrast": int(photo[-7:-4]) % 100 + 1}
    assert found == wanted, f"{photo} has {found}, not {wanted}"
print(len(saved))
PYTHON
}

all=0
for ((round = 1; round <= rounds; ++round)); do
  rm -rf "$work/data"
  editors=()
  for card in one two; do
    : >"$work/$card/saved"
    setsid bash "$work/editor" "$cli" "$work/$card" "$edits" &
    editors+=($!)
  done
  sleep "$((RANDOM % 2)).$(printf '%03d' $((RANDOM % 1000)))"
  for editor in "${editors[@]}"; do kill -KILL -- "-$editor" 2>/dev/null || true; done
  wait "${editors[@]}" 2>/dev/null || true
  saved=$(has_saved "$work/one" "$work/two") || fail "round $round"
  all=$((all + saved))
  # Whoever was killed keeps nobody out.
  "$cli" edits "$work/one/DSC_00300.JPG" --set contrast=1 --file "$edits" || fail "round $round: no edit after it"
  has_saved "$work/one" "$work/two" >/dev/null || fail "round $round, after another edit"
done
((all > rounds)) || fail "the programs were killed before they saved anything"
say "$rounds kills of two, $all edits saved: none torn, none lost"

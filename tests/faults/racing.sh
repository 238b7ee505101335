#!/usr/bin/env bash
# Two copies into one folder at the same time: racing.sh KELVARA_CLI [ROUNDS]. Both cards' photos bear the same
# names. Nobody's file may be overwritten or torn; what one run could not place, it says, and a further run does.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
rounds=${2:-5}
photos "$work/a" 150 200000
photos "$work/b" 150 200001

sums() { (cd "$1" && find . -type f ! -name '*.partial' -print0 | xargs -0 sha256sum | cut -d' ' -f1 | sort); }
sort -u <(sums "$work/a") <(sums "$work/b") >"$work/known"
for ((round = 1; round <= rounds; ++round)); do
  for pair in "a a" "a b"; do
    read -r one other <<<"$pair"
    target=$work/target
    rm -rf "$target"
    "$cli" copy "$work/$one" "$target" >/dev/null 2>"$work/said-1" &
    first=$!
    "$cli" copy "$work/$other" "$target" >/dev/null 2>"$work/said-2" &
    second=$!
    wait "$first" || true
    wait "$second" || true
    unknown=$(comm -13 "$work/known" <(sums "$target" | sort -u))
    [[ -z $unknown ]] || fail "a file is neither of the two"
    code 0 copy "$work/$one" "$target"
    code 0 copy "$work/$other" "$target"
    missing=$(comm -23 <(sort -u <(sums "$work/$one") <(sums "$work/$other")) <(sums "$target" | sort -u))
    [[ -z $missing ]] || fail "a photo of $pair is missing"
    [[ $(sums "$target" | wc -l) == $(sums "$target" | sort -u | wc -l) ]] || fail "a photo is there twice"
    no_partials "$target"
  done
done
say "$rounds rounds of the same card twice and of two cards: every photo there once, whole"

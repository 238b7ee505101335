#!/usr/bin/env bash
# Kills copies of 500 files at random moments, then copies again: killed.sh KELVARA_CLI [ROUNDS [OPTION...]].
# At no time does anything incomplete bear a final name; the second run copies what is missing and nothing twice.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
rounds=${2:-10}
options=("${@:3}")
count=500
card=$work/card
photos "$card" "$count" 60000

# How long an undisturbed copy takes, so that the kills fall into it.
started=$(date +%s%N)
copy "$card" "$work/undisturbed" "${options[@]}" || fail "$(cat "$said")"
lasts=$((($(date +%s%N) - started) / 1000))
complete "$card" "$work/undisturbed"
rm -r "$work/undisturbed"

most=0
for ((round = 1; round <= rounds; ++round)); do
  target=$work/target
  "$cli" copy "$card" "$target" "${options[@]}" >/dev/null 2>&1 &
  kill_within "$lasts" $!

  there=0
  if [[ -d $target ]]; then
    whole "$card" "$target"
    there=$(find "$target" -name '*.NEF' | wc -l)
  fi
  ((there <= most)) || most=$there
  copy "$card" "$target" "${options[@]}" || fail "round $round: $(cat "$said")"
  expect copied $((count - there)) skipped "$there" renamed 0 failed 0
  complete "$card" "$target"
  rm -r "$target"
done
((most > 0)) || fail "no kill came in the middle of a copy"
say "$rounds kills, up to $most of $count files there: nothing torn, nothing lost, nothing copied twice"

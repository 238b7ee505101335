# What the fault scripts share; sourced with the path of kelvara-cli as first argument. Each script makes a card,
# lets something go wrong while it is copied, and looks at every byte that is there afterwards.
set -euo pipefail

cli=$(realpath "$1")
work=$(mktemp -d)
undo=() # commands that give back what a script has taken, last first

finish() {
  local i
  for ((i = ${#undo[@]} - 1; i >= 0; --i)); do eval "${undo[i]}" || true; done
  chmod -R u+rwX "$work" 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 1' INT TERM

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}
skip() {
  printf 'skipped: %s\n' "$*"
  exit 77
}
say() { printf '%s\n' "$*"; }

# photos FOLDER COUNT BYTES [EXTENSION]: files of noise, no two alike.
photos() {
  local folder=$1 count=$2 bytes=$3 extension=${4:-NEF} i
  mkdir -p "$folder"
  for ((i = 1; i <= count; ++i)); do
    head -c "$bytes" /dev/urandom >"$folder/$(printf 'DSC_%05d.%s' "$i" "$extension")"
  done
}

verb=copy # what the functions below do: copy, or export
# copy FOLDER DESTINATION [OPTION...]: the report goes to $report, errors to $said; gives the exit code.
report=$work/report.json said=$work/said
copy() {
  local code=0
  "$cli" "$verb" "$@" --json >"$report" 2>"$said" || code=$?
  return "$code"
}
# copy_as_nobody FOLDER DESTINATION: the same for somebody without special rights, who owns FOLDER, and DESTINATION
# with the further argument "own".
copy_as_nobody() {
  local code=0 as_nobody=()
  if ((EUID == 0)); then
    as_nobody=(setpriv --reuid 65534 --regid 65534 --clear-groups)
    chmod 755 "$work"
    chown -R 65534 "$1"
    [[ ${3:-} != own ]] || chown 65534 "$2"
  fi
  "${as_nobody[@]}" "$cli" "$verb" "$1" "$2" --json >"$report" 2>"$said" || code=$?
  return "$code"
}
# value NAME: a field of the report.
value() { python3 -c 'import json, sys; print(json.load(open(sys.argv[1]))[sys.argv[2]])' "$report" "$1"; }
# expect NAME NUMBER...: pairs of fields of the report and what they must be.
expect() {
  while (($#)); do
    [[ $(value "$1") == "$2" ]] || fail "$1 is $(value "$1"), not $2: $(cat "$said")"
    shift 2
  done
}
# told TEXT: it is among what the user was told, in the report or as an error.
told() { grep -qF -- "$1" "$report" "$said" || fail "“$1” was not said, but: $(tail -c 2000 "$report" "$said")"; }

# whole SOURCE DESTINATION: whatever bears a final name there equals the file of that name on the card.
whole() {
  local file
  while IFS= read -r -d '' file; do
    cmp -s "$file" "$1/${file#"$2"/}" || fail "$file is not what ${file#"$2"/} was on the card"
  done < <(find "$2" -type f ! -name '*.partial' -print0)
}
# complete SOURCE DESTINATION: the same files, byte for byte, and nothing else.
complete() { diff -rq "$1" "$2" >&2 || fail "$2 does not hold just what $1 holds"; }
# no_partials FOLDER
no_partials() {
  local left
  left=$(find "$1" -name '*.partial')
  [[ -z $left ]] || fail "left behind: $left"
}

# paused FOLDER DESTINATION COMMAND [OPTION...]: runs COMMAND while a copy stands still that has begun but not
# yet reached the end, then lets it go on; ends as `copy`.
paused() {
  local folder=$1 destination=$2 command=$3 code=0
  shift 3
  "$cli" "$verb" "$folder" "$destination" "$@" --json >"$report" 2>"$said" &
  local process=$!
  until compgen -G "$destination/*" >/dev/null; do
    kill -0 "$process" 2>/dev/null || fail "the copy ended before it could be disturbed: $(cat "$said")"
  done
  kill -STOP "$process"
  "$command"
  kill -CONT "$process"
  wait "$process" || code=$?
  return "$code"
}

# kill_within MICROSECONDS PROCESS: kills a job of the script at any moment of that time.
kill_within() {
  local moment=$(($1 * (RANDOM * 32768 + RANDOM) / 1073741824))
  sleep "$((moment / 1000000)).$(printf '%06d' $((moment % 1000000)))"
  kill -KILL "$2" 2>/dev/null || true
  wait "$2" 2>/dev/null || true
}

# code EXPECTED COMMAND...: runs it and compares its exit code.
code() {
  local expected=$1 code=0
  shift
  "$@" || code=$?
  ((code == expected)) || fail "exit code $code, not $expected: $(cat "$said")"
}

need_root() { ((EUID == 0)) || skip "not root"; }
# mounted FOLDER MOUNT-ARGUMENT...: mounts there until the end of the script.
mounted() {
  local folder=$1
  shift
  mkdir -p "$folder"
  mount "$@" "$folder" 2>/dev/null || skip "nothing can be mounted here"
  undo+=("umount '$folder'")
}

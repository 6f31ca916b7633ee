#!/usr/bin/env bash
# print.sh TALELOOM SAMPLE.TPD: the story given with -P on the command line
# is printed as a book without a dialog (TALELOOM_PRINT_TO makes the print
# job write a PDF instead of going to a printer); the program stays open
# afterwards and the story is not changed.
set -euo pipefail
app=$1 sample=$2

work=$(mktemp -d)
pid=
cleanup() {
  [ -n "$pid" ] && kill "$pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
mkdir -p "$HOME"
fail() {
  echo "FAIL: $*" >&2
  [ -f "$work/log" ] && cat "$work/log" >&2
  exit 1
}

cp -r "$(dirname "$sample")" "$work/story"
story="$work/story/$(basename "$sample")"
before=$(md5sum <"$story")

TALELOOM_PRINT_TO="$work/book.pdf" "$app" -P "$story" >"$work/log" 2>&1 &
pid=$!
for _ in $(seq 1 120); do
  if pdfinfo "$work/book.pdf" >"$work/info" 2>/dev/null; then break; fi
  sleep 0.25
done
grep -Eq '^Pages: +1$' "$work/info" 2>/dev/null || fail "no book of one sheet was written"
pdftoppm -r 20 -gray "$work/book.pdf" "$work/sheet"
# Something besides white paper: the pictures and the footer.
dark=$(od -An -v -tu1 -j 15 "$work/sheet-1.pgm" | tr -s ' ' '\n' | awk '$1 != "" && $1 < 200' | wc -l)
[ "$dark" -gt 200 ] || fail "the sheet is nearly blank ($dark dark pixels)"
sleep 1
kill -0 "$pid" 2>/dev/null || fail "the program ended after printing"
kill "$pid"
wait "$pid" 2>/dev/null || true
pid=
[ "$before" = "$(md5sum <"$story")" ] || fail "printing changed the story"
echo "printed from the command line into a PDF of one sheet ($dark dark pixels), program still open: ok"

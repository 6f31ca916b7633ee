#!/usr/bin/env bash
# player.sh TOOL PLAYER SAMPLE.TPD: a story is published with its player,
# moved elsewhere and made read-only, as on a stick handed to a family; the
# player started from there plays it through by itself and ends, and the
# folder holds exactly what it held before. A player without its story
# ends at once with status 1.
set -euo pipefail
tool=$1 player=$2 sample=$3

work=$(mktemp -d)
cleanup() {
  chmod -R u+w "$work" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
mkdir -p "$HOME" "$work/out"
fail() {
  echo "FAIL: $*" >&2
  exit 1
}

"$tool" publish "$sample" --to "$work/out" --name "Bedtime" --player "$player" >"$work/report.json" \
  || fail "publishing failed"
mv "$work/out/Bedtime" "$work/stick"
chmod -R a-w "$work/stick"
before=$(cd "$work/stick" && find . -printf '%p %s %T@\n' | sort)

start=$(date +%s)
timeout 60 "$work/stick/Start Here!" --windowed --quit-at-end >"$work/play.log" 2>&1 \
  || fail "the player did not end cleanly ($?): $(cat "$work/play.log")"
took=$(( $(date +%s) - start ))
[ "$took" -le 45 ] || fail "the player took $took s"
after=$(cd "$work/stick" && find . -printf '%p %s %T@\n' | sort)
[ "$before" = "$after" ] || fail "the player wrote into its folder"

mkdir "$work/empty"
cp "$player" "$work/empty/Start Here!"
set +e
timeout 20 "$work/empty/Start Here!" --windowed --quit-at-end >"$work/empty.log" 2>&1
status=$?
set -e
[ "$status" = 1 ] || fail "a player without its story ended with $status"
grep -q "data.TPD" "$work/empty.log" || fail "a player without its story said nothing"
echo "published, moved, read-only, played through in $took s and left untouched: ok"

#!/usr/bin/env bash
# check-install.sh BUILD BINDIR DATADIR: installs BUILD into a scratch
# DESTDIR and checks what lands there: the programs, the data the programs
# look for, a desktop entry desktop-file-validate accepts without a remark,
# well-formed file types, the icons, and a thumbnailer entry whose command
# really draws a story's thumbnail.
set -euo pipefail
build=$1 bindir=$2 datadir=$3

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

DESTDIR="$stage" cmake --install "$build" >"$stage.log" 2>&1 || { cat "$stage.log" >&2; rm -f "$stage.log"; exit 1; }
rm -f "$stage.log"
bin=$stage$bindir
data=$stage$datadir

for program in taleloom taleloom-tool; do
  [ -x "$bin/$program" ] || fail "$program is not installed in $bindir"
done
[ -f "$data/taleloom/samples/Sample/Sample.TPD" ] || fail "the sample story is not installed"
[ -f "$data/taleloom/Color Palettes/Atelier Colors.SCP" ] || fail "the shipped colour palette is not installed"

desktop=$data/applications/taleloom.desktop
if [ -f "$desktop" ]; then
  remarks=$(desktop-file-validate "$desktop" 2>&1) || fail "desktop-file-validate refuses the entry"
  [ -z "$remarks" ] || fail "desktop-file-validate: $remarks"
  grep -qx 'Exec=taleloom %f' "$desktop" || fail "the entry does not open a file"
else
  fail "no desktop entry"
fi

mime=$data/mime/packages/taleloom.xml
if [ -f "$mime" ]; then
  xmllint --noout "$mime" || fail "the file types are not well-formed XML"
  for glob in '*.TPD' '*.tpd' '*.ACT' '*.SCP'; do
    grep -qF "<glob pattern=\"$glob\"/>" "$mime" || fail "no file type for $glob"
  done
else
  fail "no file types"
fi

for size in 16 24 32 48 64 128 256; do
  [ -f "$data/icons/hicolor/${size}x${size}/apps/taleloom.png" ] || fail "no ${size}x${size} icon"
done

thumbnailer=$data/thumbnailers/taleloom.thumbnailer
if [ -f "$thumbnailer" ]; then
  exec_line=$(sed -n 's/^Exec=//p' "$thumbnailer")
  [ "$exec_line" = "$bindir/taleloom-tool render %i --size %s -o %o" ] || fail "thumbnailer Exec: $exec_line"
  grep -qx "MimeType=application/x-taleloom-story;" "$thumbnailer" || fail "the thumbnailer is not for stories"
  # Run it as a file manager would, on the installed program.
  out=$stage/thumbnail.png
  command=${exec_line//%i/$data/taleloom/samples/Sample/Sample.TPD}
  command=${command//%s/128}
  command=${command//%o/$out}
  command=${command/#$bindir/$bin}
  if $command 2>/dev/null && [ -f "$out" ]; then
    # The width and height of a PNG are the big-endian words at 16 and 20.
    size=$(od -An -tu1 -j16 -N8 "$out" | awk '{ print $3 * 256 + $4, $7 * 256 + $8 }')
    [ "$size" = "128 96" ] || fail "the thumbnail is $size, not 128 96"
  else
    fail "the thumbnailer's command did not draw a thumbnail"
  fi
else
  fail "no thumbnailer entry"
fi

if [ "$failures" -ne 0 ]; then
  exit 1
fi
echo "install tree checked"

#!/usr/bin/env bash
# first-run.sh PROGRAM STATE.PY: a child's teacher starts TaleLoom for the
# first time, makes a project through the start-up and new-project
# dialogs, paints a stroke, saves and quits; the story then plays through
# from the command line with -S -Q and the program ends by itself.
# The program's state file tells where each window and control stands.
set -euo pipefail
program=$1 reader=$2

work=$(mktemp -d)
pid=
cleanup() {
  [ -n "$pid" ] && kill -9 "$pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
export TALELOOM_STATE_FILE=$work/state.json
mkdir -p "$HOME"

fail() {
  echo "FAIL: $*" >&2
  [ -f "$work/state.json" ] && cat "$work/state.json" >&2
  exit 1
}

# Asks the program for its state and waits until it is written.
refresh() {
  rm -f "$work/state.json"
  kill -USR1 "$pid"
  for _ in $(seq 100); do
    [ -s "$work/state.json" ] && python3 -c "import json,sys; json.load(open(sys.argv[1]))" "$work/state.json" 2>/dev/null && return 0
    sleep 0.1
  done
  fail "the state file was not written"
}
query() { python3 "$reader" "$work/state.json" "$@"; }
# Waits until the query answers, refreshing the state meanwhile.
await() {
  for _ in $(seq 60); do
    refresh
    if answer=$(query "$@"); then
      echo "$answer"
      return 0
    fi
    sleep 0.25
  done
  fail "never came: $*"
}
click() { xdotool mousemove "$1" "$2" click 1; sleep 0.3; }

"$program" >"$work/log" 2>&1 &
pid=$!
# The state is asked for only once the main window is up: the program
# answers the signal from then on.
timeout 30 xdotool search --sync --onlyvisible --name "Untitled - TaleLoom" >/dev/null || fail "no main window came up"
sleep 0.5

# The first run writes the settings and makes the projects' folder.
read -r x y < <(await control TaleLoom OK) || true
[ -f "$XDG_CONFIG_HOME/TaleLoom/MainPreferences.conf" ] || fail "no settings were written"
projects=$(find "$HOME" -type d -name 'TaleLoom Projects' | head -1)
[ -n "$projects" ] || fail "no projects folder was made"

# "Start New Project" is the start-up dialog's first answer.
click "$x" "$y"
read -r fx fy < <(await control-kind "New Project" entry)
click "$fx" "$fy"
xdotool key ctrl+a
xdotool type --delay 20 "Garden"
read -r ox oy < <(await control "New Project" OK)
click "$ox" "$oy"
story="$projects/Garden/Garden.TPD"
for _ in $(seq 40); do [ -f "$story" ] && break; sleep 0.25; done
[ -f "$story" ] || fail "the project was not made at $story"

# A stroke across the middle of the page, then Control+S.
read -r wx wy ww wh < <(await window "Garden - TaleLoom")
cx=$((wx + ww / 2)) cy=$((wy + wh / 2))
xdotool mousemove $((cx - 120)) "$cy" mousedown 1
for step in $(seq 1 12); do
  xdotool mousemove $((cx - 120 + step * 20)) $((cy + step * 3))
  sleep 0.03
done
xdotool mouseup 1
sleep 0.3
refresh
[ "$(query value project.elements)" = 1 ] || fail "the stroke is not on the tape"
[ "$(query value project.changed)" = true ] || fail "the stroke did not mark the story changed"
before=$(stat -c %Y "$story")
xdotool key ctrl+s
sleep 1
refresh
[ "$(query value project.changed)" = false ] || fail "Control+S did not save"
sleep 1

# Quitting a saved story asks nothing.
xdotool key ctrl+q
for _ in $(seq 40); do kill -0 "$pid" 2>/dev/null || break; sleep 0.25; done
if kill -0 "$pid" 2>/dev/null; then fail "the program did not quit"; fi
wait "$pid" || fail "the program ended with status $?"
pid=

# The saved story plays through and the program ends by itself.
timeout 60 "$program" -S -Q "$story" >"$work/play.log" 2>&1 || fail "-S -Q did not end cleanly: $(cat "$work/play.log")"
echo "first run, new project, stroke, save, quit and -S -Q: ok"

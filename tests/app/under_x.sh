#!/usr/bin/env bash
# under_x.sh VXMVIEWER MAKE_SAMPLE APP_TESTS: drives the program, and the tests that need it, on a display of
# its own, with a window manager: real focus, OpenGL in the window, lock keys, gamma ramp, full screen. 77:
# what it needs is not installed.
set -u
viewer=$1 make_sample=$2 app_tests=$3
here=$(cd "$(dirname "$0")" && pwd)
for needed in Xvfb openbox xdotool xdpyinfo xprop xmodmap setxkbmap; do
  command -v "$needed" >/dev/null || { echo "skipped: there is no $needed"; exit 77; }
done

work=$(mktemp -d)
export XDG_RUNTIME_DIR=$work HOME=$work XDG_CONFIG_HOME=$work XDG_CACHE_HOME=$work DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent
chmod 700 "$work"
started=()
finish() {
  for process in "${started[@]}"; do kill "$process" 2>/dev/null; done
  wait
  rm -rf "$work"
}
trap finish EXIT
fail() { echo "FAILED: $*"; exit 1; }

Xvfb -displayfd 3 -screen 0 1280x800x24 -noreset 3>"$work/number" >"$work/xvfb.log" 2>&1 &
started+=($!)
for _ in $(seq 100); do [ -s "$work/number" ] && break; sleep 0.1; done
DISPLAY=:$(cat "$work/number")
export DISPLAY
xdpyinfo >/dev/null || fail "no display"
openbox >"$work/openbox.log" 2>&1 &
started+=($!)
"$make_sample" "$work/sample" >/dev/null || fail "no sample"
cd "$work/sample" || exit 1

# start ARGUMENT...: runs the viewer and waits for its window.
start() {
  "$viewer" "$@" >"$work/viewer.log" 2>&1 &
  process=$!
  started+=("$process")
  window=$(timeout 30 xdotool search --sync --onlyvisible --pid "$process" --name '^r_dx9' | head -1)
  [ -n "$window" ] || fail "no window: $(cat "$work/viewer.log")"
  xdotool windowactivate --sync "$window"
}
# await SECONDS COMMAND...: until the command succeeds.
await() {
  local until=$((SECONDS + $1))
  shift
  until "$@"; do
    [ $SECONDS -lt $until ] || return 1
    sleep 0.1
  done
}
title_is() { [ "$(xdotool getwindowname "$window")" = "r_dx9::Facet Bench [x64] 1.0.5@.201312xx$1" ]; }
stop() {
  xdotool key --window "$window" ctrl+n
  await 10 title_is "" || fail "Ctrl+N left $(xdotool getwindowname "$window")"
  xdotool key alt+F4
  await 10 bash -c "! kill -0 $process 2>/dev/null" || fail "the window does not close"
  wait "$process" || fail "exit status $?: $(cat "$work/viewer.log")"
}
state_has() { xprop -id "$window" _NET_WM_STATE | grep -q FULLSCREEN; }
state_lacks() { ! state_has; }
menu_open() {
  xdotool search --onlyvisible --pid "$process" 2>/dev/null | xargs -n 1 xprop _NET_WM_WINDOW_TYPE -id | grep -q MENU
}
menu_closed() { ! menu_open; }

for device in hal ref; do
  start --device "$device" lighthouse.vxm
  await 10 title_is " - [lighthouse.vxm]" || fail "$device: not loaded"
  xdotool mousemove 600 400 click 1
  xdotool key Tab Tab F1 c  # Next: by the real focus
  await 10 title_is " - [lighthouse.ds2md]" || fail "$device: keys do not arrive: $(xdotool getwindowname "$window")"
  xdotool key F11
  await 10 state_has || fail "$device: no full screen"
  xdotool key F11
  await 10 state_lacks || fail "$device: full screen stays"
  menu_open && fail "$device: a menu is open"
  xdotool key alt+f
  await 10 menu_open || fail "$device: no menu by Alt+F"
  xdotool key Escape
  await 10 menu_closed || fail "$device: the menu stays"
  xdotool key Escape
  stop
done

# Started by its name, the program finds the configuration beside itself: no warning comes before the window.
mkdir "$work/bin" && cp "$viewer" VXMViewer.cfg "$work/bin" && cd "$work" || fail "no copy"
PATH=$work/bin:$PATH viewer=$(basename "$viewer") start --device ref
stop

# Each control has a name for those who hear it.
names() {
  export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
  cd "$work/sample" && start --device ref lighthouse.vxm
  xdotool key m
  sleep 0.5
  xdotool key Escape j
  sleep 0.5
  /usr/bin/python3 "$here/accessible_names.py" vxmviewer || fail "controls without names"
  stop
}
if /usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null; then
  export -f start await title_is stop fail names
  export viewer window work here
  timeout 60 dbus-run-session -- bash -c 'started=(); names' >"$work/names.log" 2>&1 || fail "$(cat "$work/names.log")"
fi

xmodmap -e 'add mod3 = Scroll_Lock'
FACET_TEST_DISPLAY=1 "$app_tests" --gtest_filter='UnderX.*:ManyModels.*' >"$work/tests.log" 2>&1 ||
  fail "$(cat "$work/tests.log")"
grep -q '^\[  PASSED  \] [1-9]' "$work/tests.log" || fail "no test ran"
echo "passed"

#!/usr/bin/env bash
# under_wayland.sh APP_TESTS: runs the tests that need it on a Wayland compositor of their own, which shows its
# windows to nobody. 77: what it needs is not installed.
set -u
app_tests=$1
for needed in weston weston-screenshooter; do
  command -v "$needed" >/dev/null || { echo "skipped: there is no $needed"; exit 77; }
done

work=$(mktemp -d)
export XDG_RUNTIME_DIR=$work HOME=$work XDG_CONFIG_HOME=$work XDG_CACHE_HOME=$work WAYLAND_DISPLAY=facet-test
weston --backend=headless-backend.so --use-pixman --width=1024 --height=600 --socket="$WAYLAND_DISPLAY" --debug \
  --idle-time=0 >"$work/weston.log" 2>&1 &
compositor=$!
finish() {
  kill "$compositor" 2>/dev/null
  wait
  rm -rf "$work"
}
trap finish EXIT
for _ in $(seq 100); do [ -S "$work/$WAYLAND_DISPLAY" ] && break; sleep 0.1; done
export FACET_TEST_DISPLAY=1 QT_QPA_PLATFORM=wayland
"$app_tests" --gtest_filter='UnderWayland.*' >"$work/tests.log" 2>&1 || { cat "$work/tests.log" "$work/weston.log"; exit 1; }
if grep -q "could not\|platform plugin" "$work/tests.log"; then cat "$work/tests.log"; exit 77; fi
grep -q '^\[  PASSED  \] [1-9]' "$work/tests.log" || { echo "no test ran"; exit 1; }
echo "passed"

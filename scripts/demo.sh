#!/usr/bin/env bash
# Runs the most complete example that the build holds. With a display: the Qt demo window over the
# sample sales database. Without one: the Qt demo renders every control, in English and in
# Chinese, to PNG files and says where. Without the Qt demo: the headless demo prints what a host
# would see.
set -euo pipefail
build=${1:-build}
demo="$build/apps/tarnsheets-demo"
if [ -x "$demo" ]; then
  if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$demo"
  fi
  out="$build/screenshots"
  echo "demo: no display (\$DISPLAY and \$WAYLAND_DISPLAY are empty); rendering the controls instead"
  "$demo" --lang 1033 --screenshot "$out/en"
  "$demo" --lang 2052 --screenshot "$out/zh"
  echo "demo: the pictures are in $(cd "$out" && pwd)/en and $(cd "$out" && pwd)/zh"
elif [ -x "$build/apps/tarnsheets-headless-demo" ]; then
  exec "$build/apps/tarnsheets-headless-demo" "$(dirname "$0")/../examples/user_info.json"
else
  echo "demo: no demo program was built in $build" >&2
  exit 1
fi

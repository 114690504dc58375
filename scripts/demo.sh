#!/usr/bin/env bash
# Runs the most complete example that the build holds, and prints what a host would see.
set -euo pipefail
build=${1:-build}
if [ -x "$build/apps/tarnsheets-demo" ]; then
  exec "$build/apps/tarnsheets-demo"
elif [ -x "$build/apps/tarnsheets-headless-demo" ]; then
  exec "$build/apps/tarnsheets-headless-demo" "$(dirname "$0")/../examples/user_info.json"
else
  echo "demo: no demo program was built in $build" >&2
  exit 1
fi

#!/usr/bin/env bash
# Runs one golden transcript test of tarnsheets-script.
#
#   run_golden.sh PROGRAM DIR NAME
#
# Plays DIR/NAME.tscript in a scratch copy of DIR (so that scripts may write files and read the
# fixtures beside them by relative names) and compares:
#   - standard output with NAME.expected,
#   - the exit status with NAME.expected-exit (0 when that file is missing),
#   - standard error with NAME.expected-err (empty when that file is missing).
# Extra options for the program (for example --trace-ds) stand in NAME.args.
# With UPDATE_GOLDEN=1 the expected files are written from what the program did instead; read
# every regenerated transcript before it goes in.
set -u
prog=$1
dir=$2
name=$3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -R "$dir"/. "$work"/
# SQLite fixtures stand as SQL text beside the scripts and become databases in the scratch copy.
for sql in "$work"/fixtures/*.sql; do
  [ -e "$sql" ] || continue
  sqlite3 "${sql%.sql}.db" < "$sql" || { echo "golden: cannot build ${sql##*/}" >&2; exit 1; }
done

args=()
if [ -f "$dir/$name.args" ]; then
  read -r -a args < "$dir/$name.args"
fi

(cd "$work" && "$prog" "${args[@]}" "$name.tscript" > "$work/.stdout" 2> "$work/.stderr")
status=$?

if [ "${UPDATE_GOLDEN:-}" = 1 ]; then
  cp "$work/.stdout" "$dir/$name.expected"
  if [ "$status" -ne 0 ]; then
    echo "$status" > "$dir/$name.expected-exit"
    cp "$work/.stderr" "$dir/$name.expected-err"
  else
    rm -f "$dir/$name.expected-exit" "$dir/$name.expected-err"
  fi
  echo "golden: wrote $dir/$name.expected (exit $status)"
  exit 0
fi

failed=0
expected_exit=0
if [ -f "$dir/$name.expected-exit" ]; then
  expected_exit=$(tr -d '[:space:]' < "$dir/$name.expected-exit")
fi
if [ "$status" != "$expected_exit" ]; then
  echo "golden $name: exit status $status, expected $expected_exit"
  failed=1
fi
if ! diff -u --label "$name.expected" --label "$name (actual output)" \
    "$dir/$name.expected" "$work/.stdout"; then
  echo "golden $name: the transcript differs (run with UPDATE_GOLDEN=1 to accept a change)"
  failed=1
fi
expected_err=/dev/null
if [ -f "$dir/$name.expected-err" ]; then
  expected_err="$dir/$name.expected-err"
fi
if ! diff -u --label "$name.expected-err" --label "$name (actual standard error)" \
    "$expected_err" "$work/.stderr"; then
  echo "golden $name: standard error differs"
  failed=1
fi
exit $failed

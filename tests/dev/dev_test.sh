#!/bin/sh
# Tests of ./dev itself and of the runner of the script tests: dev_test.sh
# PATH-OF-DEV, after build/linux was built.

dev=$(realpath "$1")
folder=$(mktemp -d "${TMPDIR:-/tmp}/plaincast-dev.XXXXXX") || exit 1
trap 'rm -rf "$folder"' EXIT
faults=0

# expect CODE OUTPUT ARGUMENT...: runs dev in the folder; a run that has nothing
# to build says nothing on standard error when its exit code is not its own.
expect() {
    wanted=$1 output=$2
    shift 2
    got=$(cd "$folder" && "$dev" "$@" 2>"$folder/errors")
    code=$?
    if [ "$code" -ne "$wanted" ] || [ "$got" != "$output" ]; then
        echo "dev $*: exit code $code, expected $wanted; output: $got"
        cat "$folder/errors"
        faults=$((faults + 1))
    fi
}

sh -n "$dev" || faults=$((faults + 1))
python3 -B -m doctest "$(dirname "$0")/../run_scripts.py" || faults=$((faults + 1))
expect 2 "" frobnicate
expect 2 "" run
expect 2 "" build mars
expect 2 "" test everything

cat >"$folder/of mine.qcs" <<'END'
function main
    echo ( "x is " . x )
    exit 7
end
END
expect 7 "x is a b" run "of mine.qcs" --var "x=a b"
if [ -s "$folder/errors" ]; then
    echo "dev run is not quiet when nothing is to be built:"
    cat "$folder/errors"
    faults=$((faults + 1))
fi
# The catalogue beside the program is found: no bare message number is left.
(cd "$folder" && "$dev" run missing.qcs) >"$folder/output" 2>&1
code=$?
if [ $code -ne 3 ] || grep -q '#::' "$folder/output"; then
    echo "dev run missing.qcs: exit code $code, expected 3 and a readable message:"
    cat "$folder/output"
    faults=$((faults + 1))
fi
exit $((faults > 0))

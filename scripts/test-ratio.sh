#!/bin/sh
# Non-blank lines of tests over non-blank lines of code, in the working tree or at a revision
# (scripts/test-ratio.sh [REV]). Tests: tests/**/*.{cpp,h,qml,js,sh,py}; code: src/**/*.{cpp,h}
# and qml/**/*.{qml,js}.
cd "$(git rev-parse --show-toplevel)" || exit 1
rev=$1
count() {
    if [ -n "$rev" ]; then
        git ls-tree -r --name-only "$rev" | grep -E "$1" | while read -r f; do git show "$rev:$f"; done
    else
        git ls-files | grep -E "$1" | while read -r f; do cat "$f"; done
    fi | grep -cv '^[[:space:]]*$'
}
tests=$(count '^tests/.*\.(cpp|h|qml|js|sh|py)$')
code=$(count '^(src/.*\.(cpp|h)|qml/.*\.(qml|js))$')
echo "tests $tests / code $code = $(awk -v t="$tests" -v c="$code" 'BEGIN { printf "%.2f", t / c }')"

#!/bin/sh
# Non-blank lines of tests over non-blank lines of code, counted over the files git tracks.
# Tests: tests/**/*.{cpp,h,qml,js,sh,py}; code: src/**/*.{cpp,h} and qml/**/*.{qml,js}.
cd "$(git rev-parse --show-toplevel)" || exit 1
count() { git ls-files -z -- "$@" | xargs -0 cat | grep -cv '^[[:space:]]*$'; }
tests=$(count 'tests/*.cpp' 'tests/*.h' 'tests/*.qml' 'tests/*.js' 'tests/*.sh' 'tests/*.py')
code=$(count 'src/*.cpp' 'src/*.h' 'qml/*.qml' 'qml/*.js')
echo "tests $tests / code $code = $(awk -v t="$tests" -v c="$code" 'BEGIN { printf "%.2f", t / c }')"

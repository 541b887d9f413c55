#!/usr/bin/env bash
# Builds everything and passes every test and check; sets up the machine first.
#
#   ./test.sh [--long | --ci] [STEP...]
#
# Steps: format tree native-debug native-release windows-x64 windows-x86 command speed lint coverage fuzz same-build;
# without names, all but the last three. --ci adds coverage and fuzz, whose builds take longer than what they run, and
# --long all three. A failed step does not keep the others from running. --long sets CORVANE_LONG=1, which every test
# program and every step may read to do its long version; interrupted, it goes on with the steps that have not passed.
set -uo pipefail
exec </dev/null
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1

steps=()
added=()
for argument in "$@"; do
    case $argument in
        --long)
            export CORVANE_LONG=1
            added=(coverage fuzz same-build)
            ;;
        --ci) added=(coverage fuzz) ;;
        format | tree | native-debug | native-release | windows-x64 | windows-x86 | command | speed | coverage | lint | \
            fuzz | same-build)
            steps+=("$argument")
            ;;
        *)
            sed -n '2,/^set /{/^set /!s/^# \{0,1\}//p}' "$0" >&2
            exit 64
            ;;
    esac
done
if [ ${#steps[@]} = 0 ]; then
    steps=(format tree native-debug native-release windows-x64 windows-x86 command speed lint "${added[@]}")
fi

logs=build/test-logs
mkdir -p "$logs"
passed=0
failed=0
failures=()

# A failure's log in full would drown the terminal; compilers and tests say the first thing first.
linesShown=150
testSeconds=600
if [ -n "${CORVANE_LONG:-}" ]; then testSeconds=86400; fi

stopWine() {
    tools/wine-x64 --stop
    tools/wine-x86 --stop
} >/dev/null 2>&1

# check NAME COMMAND... : runs one command as one line of output and one result.
check() {
    local name=$1 log=$logs/${1// /-}.log start=$EPOCHREALTIME result
    shift
    if "$@" >"$log" 2>&1; then
        result=ok
        passed=$((passed + 1))
    else
        result=FAILED
        failed=$((failed + 1))
        failures+=("$name")
    fi
    report "$name" "$start" "$result"
    if [ "$result" = FAILED ]; then showLog "$log"; fi
    [ "$result" = ok ]
}

report() {
    printf '%-28s %7.1f s   %s\n' "$1" "$(awk "BEGIN { print $EPOCHREALTIME - $2 }")" "$3"
}

# Without what the build tools say of themselves.
showLog() {
    local lines
    lines=$(grep -vE '^(-- |Preset |  [A-Z_]+(:[A-Z]+)?=|\[[0-9]+/[0-9]+\] (Building|Linking)|/usr/bin/ccache )|^$' "$1")
    head -n "$linesShown" <<<"$lines" | sed 's/^/    /'
    if [ "$(wc -l <<<"$lines")" -gt "$linesShown" ]; then echo "    ... the rest is in $1"; fi
}

# A preset's programs, or those that are named.
configureAndBuild() {
    local preset=$1
    shift
    cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"} -- -k 0
}

# A preset's tests, or those that are named; they count one by one, as GoogleTest counted them.
runTests() {
    local preset=$1 log=$logs/$1-tests.log start=$EPOCHREALTIME results=build/$1/test-results counts
    shift
    rm -rf "$results"
    ctest --preset "$preset" ${1:+--tests-regex "^($(IFS='|' && echo "$*"))\$"} --timeout "$testSeconds" \
        --output-junit "$PWD/$results/ctest.xml" >"$log" 2>&1
    counts=$(tools/count-tests "$results")
    passed=$((passed + ${counts% *}))
    failed=$((failed + ${counts#* }))
    if [ "${counts#* }" = 0 ]; then
        report "$preset tests" "$start" "ok, ${counts% *} tests"
    else
        report "$preset tests" "$start" "FAILED, ${counts#* } of $((${counts% *} + ${counts#* })) tests"
        failures+=("$preset tests")
        showLog "$log"
    fi
}

buildAndTest() {
    check "$1 build" configureAndBuild "$@" && runTests "$@"
}

checkFormat() {
    git ls-files -z --cached --others --exclude-standard '*.h' '*.cpp' |
        xargs -0 -r -n 20 -P 2 clang-format --dry-run -Werror
}

checkScripts() {
    git grep -lIE --untracked '^#!.*\bbash$' | xargs -r shellcheck -S warning
}

# The program as a newcomer starts it, from another directory.
checkCommand() {
    local root=$PWD
    (cd / && "$root/corvane" run "$root/examples/flow_and_stability.script" --unattended)
}

# Instructions are counted, so it does not matter what else the machine does.
countInstructions() {
    cmake --preset native-release && cmake --build --preset native-release --target bench_once &&
        tools/instruction-counts build/native-release
}

# The build tells which headers each source includes. Where it fails, clang-tidy says why.
lint() {
    configureAndBuild native-debug >/dev/null 2>&1
    tools/lint build/native-debug
}

# What the long steps have passed on; another tree begins anew.
longPassed=$logs/long-passed
isPassed() {
    [ -n "${CORVANE_LONG:-}" ] && grep -qsxF "$1 $(tools/tree-state)" "$longPassed"
}
rememberPassed() {
    if [ -n "${CORVANE_LONG:-}" ]; then echo "$1 $(tools/tree-state)" >>"$longPassed"; fi
}

trap stopWine EXIT
beginning=$EPOCHREALTIME
check 'set-up' tools/setup.sh all
for step in "${steps[@]}"; do
    if isPassed "$step"; then
        echo "$step has passed"
        continue
    fi
    failedBefore=$failed
    case $step in
        format) check 'format' checkFormat ;;
        tree)
            check 'tree' tools/check-tree
            check 'scripts' checkScripts
            ;;
        command) check 'command' checkCommand ;;
        speed) check 'instruction counts' countInstructions ;;
        fuzz) check 'fuzz' tools/fuzz ${CORVANE_LONG:+--long} ;;
        lint)
            check 'lint' lint
            check 'cppcheck' tools/cppcheck
            ;;
        coverage) check 'coverage' tools/coverage ;;
        same-build) check 'same-build' tools/same-build ;;
        native-release) buildAndTest native-release test_limits test_platform ;;
        *) buildAndTest "$step" ;;
    esac
    if [ "$failed" = "$failedBefore" ]; then rememberPassed "$step"; fi
done

report 'all' "$beginning" ''
echo
if [ "$failed" != 0 ]; then
    printf 'failed: %s\n' "${failures[@]}"
else
    rm -f "$longPassed"
fi
echo "$passed passed, $failed failed"
[ "$failed" = 0 ]

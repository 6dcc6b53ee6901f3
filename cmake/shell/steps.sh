# Sourced: running steps whose output matters only when they fail. Expects the project's folder in $root.

logs="$root/build/logs"

# quietly NAME COMMAND...: keeps the output in a log, and shows the end of it on standard error when COMMAND fails.
quietly() {
    local name=$1 result=0
    shift
    mkdir -p "$logs"
    "$@" >"$logs/$name.log" 2>&1 </dev/null || result=$?
    if [ $result -ne 0 ]; then
        tail -n 150 "$logs/$name.log" >&2
        echo "failed ($result): $* (see $logs/$name.log)" >&2
    fi
    return $result
}

# configure PRESET [OPTION...]: a build folder of another source folder (a tree that was moved or copied) is made anew.
configure() {
    local preset=$1 folder="$root/build/$1"
    shift
    if [ -f "$folder/CMakeCache.txt" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"; then
        rm -rf "$folder"
    fi
    quietly "$preset-configure" cmake -S "$root" --preset "$preset" "$@"
}

# build PRESET [TARGET...]
build() {
    local preset=$1 targets=()
    shift
    if [ $# -gt 0 ]; then
        targets=(--target "$@")
    fi
    quietly "$preset-build" nice cmake --build "$root/build/$preset" --parallel "$(nproc)" "${targets[@]}"
}

# timed TITLE COMMAND...: a line for a step, with its time. Within a function that it calls, a command that fails does not
# end the function by itself.
timed() {
    local title=$1 start=$SECONDS
    shift
    printf '%-44s' "   $title"
    "$@" || {
        printf ' FAILED\n'
        return 1
    }
    printf ' %3d s\n' "$((SECONDS - start))"
}

# grouped NUMBER: with commas between thousands
grouped() {
    sed -E ':next; s/([0-9])([0-9]{3})($|,)/\1,\2\3/; t next' <<<"$1"
}

# testsIn REPORT: how many tests have passed, and how many have not (failed, or did not run). An entry of ctest that runs
# suites of GoogleTest says both at its end; any other entry is one test.
testsIn() {
    awk '
        /<testcase / { status = $0; delete said }
        /^\[  (PASSED |FAILED |SKIPPED)[ ]+\] [0-9]+ tests?/ { said[$2] = $4 }
        /<\/testcase>/ {
            others = said["FAILED"] + said["SKIPPED"]
            if (status !~ /status="run"/ && others == 0)
                others = 1
            good += "PASSED" in said || others > 0 ? said["PASSED"] : 1
            bad += others
        }
        END { print good + 0, bad + 0 }' "$1"
}

# runGoogleTest COMMAND...: runs a program of GoogleTest and shows what it says. How many of its tests have passed and failed
# is in $good and $bad, and is added to $passed and $failed. One that ends before its summary, or that has no test, has failed.
passed=0
failed=0
runGoogleTest() {
    local output result=0
    output=$(mktemp)
    nice "$@" --gtest_brief=1 >"$output" 2>&1 || result=$?
    grep -v '^$' "$output" || true
    good=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) test.*/\1/p' "$output")
    bad=$(sed -n 's/^\[  FAILED  \] \([0-9]*\) test.*/\1/p' "$output")
    rm -f "$output"
    good=${good:-0}
    bad=${bad:-0}
    if [ "$bad" -eq 0 ] && { [ "$result" -ne 0 ] || [ "$good" -eq 0 ]; }; then
        bad=1
    fi
    passed=$((passed + good))
    failed=$((failed + bad))
}

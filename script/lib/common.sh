# shellcheck shell=bash
# Functions that the scripts share. Sourced by bash in the project's directory.

# print_usage FILE: prints the comment at the beginning of a script.
print_usage() { sed -n '2,/^[^#]/{/^[^#]/d;s/^# \{0,1\}//;p}' "$1"; }

# answer_help FILE ARGUMENT...: prints that comment and exits if an argument is --help or -h.
answer_help()
{
    local file=$1 argument
    shift
    for argument; do
        if [ "$argument" = --help ] || [ "$argument" = -h ]; then
            print_usage "$file"
            exit 0
        fi
    done
}

# refuse NAME MESSAGE...: reports invalid arguments of the script NAME and exits.
refuse()
{
    echo "$1: ${*:2} (see $1 --help)" >&2
    exit 2
}

# --- the last line of a script's output

verdict=
verdict_details=
# end_with_verdict NAME: the script's last line becomes "NAME: PASSED (DETAILS)", or FAILED with the exit code
# and the stage that failed. A script sets $verdict_details, $stage, and $verdict if it is neither of these;
# $remove_on_exit lists its temporary files.
end_with_verdict()
{
    verdict_name=$1
    stage=
    remove_on_exit=()
    trap 'print_verdict $?' EXIT
    # Without these, $? would be the exit code of the command before the signal.
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
}

print_verdict()
{
    rm -rf "${remove_on_exit[@]}"
    if [ "$1" -eq 0 ]; then
        verdict=${verdict:-PASSED}
    elif [ "$verdict" != FAILED ]; then
        verdict=FAILED
        verdict_details="${stage:+$stage, }exit code $1"
    fi
    if [ -n "${MISCTOOLS_VERDICT_FILE:-}" ]; then
        save_verdict
    else
        echo "$verdict_name: $verdict${verdict_details:+ ($verdict_details)}"
    fi
}

# Writes the verdict to the file in MISCTOOLS_VERDICT_FILE for script/check, which prints the last line.
save_verdict()
{
    if [ -n "${MISCTOOLS_VERDICT_FILE:-}" ]; then
        printf '%s\n' "$verdict" "$verdict_details" >"$MISCTOOLS_VERDICT_FILE"
    fi
}

# fail_with_verdict DETAILS...
fail_with_verdict()
{
    verdict=FAILED
    verdict_details=$*
    exit 1
}

# --- temporary files

# Builds, tests and the demonstration create files there, including programs.
require_temporary_directory()
{
    local directory=${TMPDIR:-/tmp} probe error=
    if ! probe=$(mktemp -d "$directory/misctools.XXXXXX" 2>/dev/null) ||
        ! printf '#!/bin/sh\n' >"$probe/program" 2>/dev/null; then
        error="no file can be written in $directory"
    elif ! chmod +x "$probe/program" || ! "$probe/program" 2>/dev/null; then
        error="no program can be started in $directory, which may be mounted noexec"
    fi
    [ -z "$probe" ] || rm -rf "$probe"
    [ -z "$error" ] ||
        fail_with_verdict "$error; set another directory: TMPDIR=DIRECTORY $verdict_name"
}

# --- the presets of CMakePresets.json: CMake reads them from 3.21 on; for older versions, these functions do

cmake_version() { cmake --version | sed -n '1s/.*version \([0-9.]*\).*/\1/p'; }

cmake_reads_presets()
{
    [ "$(printf '%s\n' 3.21 "$(cmake_version)" | sort --version-sort | head -n 1)" = 3.21 ]
}

# preset_values KIND PRESET KEY: prints the members KEY of the presets from which a preset of that kind
# ("configurePresets", "testPresets") inherits, then its own: "NAME=VALUE" for each member of an object, the
# value of a string. Each must be on a separate line of the file.
preset_values()
{
    PROJECT_DIRECTORY=$PWD awk -v kind="$1" -v preset="$2" -v key="$3" '
        function value_of(line) {
            sub(/^[^:]*: "/, "", line)
            sub(/",?$/, "", line)
            gsub(/\\"/, "\"", line)
            return line
        }
        function name_of(line) {
            sub(/^ *"/, "", line)
            sub(/".*/, "", line)
            return line
        }
        function replaced(text, old, new,    place, before) {
            before = ""
            while ((place = index(text, old)) > 0) {
                before = before substr(text, 1, place - 1) new
                text = substr(text, place + length(old))
            }
            return before text
        }
        /^  "[A-Za-z]*": / { here = name_of($0) == kind }
        !here { next }
        /^      "name": / { name = value_of($0) }
        /^      "inherits": / { parents[name] = value_of($0) }
        /^      }/ { inside = 0 }
        inside { values[name] = values[name] name_of($0) "=" value_of($0) "\n" }
        name_of($0) == key && /{$/ { inside = 1 }
        name_of($0) == key && !/{$/ { values[name] = values[name] value_of($0) "\n" }
        END {
            for (name = preset; name in parents || name in values; name = parents[name])
                all = values[name] all
            all = replaced(all, "${sourceDir}", ENVIRON["PROJECT_DIRECTORY"])
            printf "%s", replaced(all, "${presetName}", preset)
        }' CMakePresets.json
}

# configure_preset PRESET [OPTION...]: configures build/PRESET.
configure_preset()
{
    local preset=$1 options=() value
    shift
    if cmake_reads_presets; then
        cmake --preset "$preset" "$@"
        return
    fi
    while IFS= read -r value; do
        options+=("-D$value")
    done < <(preset_values configurePresets "$preset" cacheVariables)
    value=$(preset_values configurePresets "$preset" toolchainFile)
    [ -z "$value" ] || options+=("-DCMAKE_TOOLCHAIN_FILE=$value")
    value=$(preset_values configurePresets "$preset" generator)
    if [ -z "$value" ]; then
        echo "There is no preset \"$preset\" in CMakePresets.json." >&2
        return 1
    fi
    echo "CMake $(cmake_version) cannot read these presets (3.21 and later can); using the values of \"$preset\":"
    echo "    -G $value ${options[*]}"
    # The options may set another build directory.
    [[ " $* " == *" -B "* ]] || options+=(-B "build/$preset")
    cmake -S . -G "$value" "${options[@]}" "$@"
}

# build_preset PRESET [OPTION...]: builds in build/PRESET, with all processors.
build_preset()
{
    local what=(--preset "$1")
    cmake_reads_presets || what=("build/$1")
    shift
    cmake --build "${what[@]}" --parallel "$(nproc)" "$@"
}

# test_preset PRESET [OPTION...]: runs ctest in build/PRESET, with the command in $test_launcher, if any.
test_launcher=()
test_preset()
{
    local preset=$1 environment
    shift
    if cmake_reads_presets; then
        env -u MISCTOOLS_VERDICT_FILE "${test_launcher[@]}" ctest --preset "$preset" "$@"
        return
    fi
    mapfile -t environment < <(preset_values testPresets "$preset" environment)
    (
        cd "build/$preset" || exit
        env -u MISCTOOLS_VERDICT_FILE "${environment[@]}" "${test_launcher[@]}" \
            ctest --no-tests=error --output-on-failure "$@"
    )
}

# run_tests PRESET [OPTION...]: does the same, prints which tests were skipped and why, and sets the verdict
# for this and earlier runs.
tests_run=0
tests_skipped=0
run_tests()
{
    local status=0 output=build/$1/script-test.log log=build/$1/Testing/Temporary/LastTest.log
    local counts reasons
    # Times by label would be sums of the times of tests that ran in parallel.
    test_preset "$@" --output-on-failure --no-label-summary 2>&1 | tee "$output" || status=$?

    # CTest's summary: "97% tests passed, 1 tests failed out of 30".
    counts=$(sed -nE 's/^[0-9]+% tests passed, ([0-9]+) tests? failed out of ([0-9]+)$/\1 \2/p' \
        "$output" | tail -n 1)
    if [ -z "$counts" ]; then
        verdict='NO TEST WAS RUN'
        verdict_details=
        save_verdict
        return "$status"
    fi
    tests_run=$((tests_run + ${counts#* }))
    tests_skipped=$((tests_skipped +
        $(grep -cE '^ *[0-9]+/[0-9]+ Test +#[0-9]+: .*\*\*\*Skipped ' "$output" || true)))

    # CTest prints the names of tests that skipped something; the reasons are only in its log.
    reasons=$(
        sed -nE 's/^SKIP   : (\w+)::.*\) (.*)$/\1: \2/p' "$log" | sort | uniq -c
        grep '^device root: not available' "$log" | sort -u || true
    )
    [ -z "$reasons" ] || printf '\nSkips and their reasons:\n%s\n' "$reasons"

    if [ "$status" -ne 0 ]; then
        verdict=FAILED
        verdict_details="${counts% *} of ${counts#* } tests, $tests_skipped skipped"
    elif [ "$tests_skipped" -eq "$tests_run" ]; then
        verdict=SKIPPED
        verdict_details="something in each of $tests_run tests"
    else
        verdict=PASSED
        verdict_details="$tests_run tests, $tests_skipped skipped"
    fi
    save_verdict
    return "$status"
}

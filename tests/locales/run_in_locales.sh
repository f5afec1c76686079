#!/usr/bin/env bash
# run_in_locales.sh BUILD USE_LOCALE: runs what formats, parses and saves in locales with other decimal points,
# digits and letter cases, made here, and compares the bytes that the command line saves.
set -euo pipefail

build="$1"
use_locale="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export LOCPATH="$work/locales" QT_QPA_PLATFORM=offscreen
mkdir "$LOCPATH"

fail() {
    printf 'run_in_locales: %s\n' "$@" >&2
    exit 1
}

# Program and cases: files, texts of numbers, headers, names, colours, reports. Cases of what a person reads choose their
# locale themselves. Files that the toolkit for images writes are left out: in German it writes the numbers of its headers
# with a comma.
parts=(
    "test_lyr_core LyrObjectFile*:LyrFileSaver.*:LyrString*:LyrQuantity*:Lyrenum*:LyrMetaClass*:-*Fault*:*many_processes*:*.more_*:*the_locale_plays*:*megabytes*:*monstrous*:*too_many_objects*"
    "test_lys_core UnitConverter.*:Placeholders.*:LyqPresetHandlerTest.*:LyqPresetStoreTest.*"
    "test_colortable */EveryProperty*"
    "test_colortable_eval SectionRule.*:ScalarTable.*:-*random*"
    "test_colortable_presets LyqPresetColortableHandler*:LyrPresetColortableProxyObject*:InstalledPresets*:BadPresetFiles*:-*every_cut*"
    "test_colortable_legend LegendLayout.*:LegendPicture.*:RenderSettings.*"
    "test_fuzz *"
    "test_lyr_volume *Reader.*:-*cut*:*damaged*:LyrVolumeReader.*casting*"
    "test_colortable_model TableGenerators.*:LyrColorLookupTableEvaluation.*"
    "test_analysis */EveryProperty*"
    "test_analysis_compute LyrAnalysisReport.*"
)
# Each of these cases runs the program once or more: one or two of each command, of those that write or read numbers.
commands=(
    "Create.a_smooth_table*" "Info.the_rainbow*" "Info.a_table_file*" "Info.a_volume_is_told*"
    "MapAt.the_default_rainbow*" "MapAt.values_are_the_nearest*" "MapAt.denormals*" "MapRange.positions_are_formed*"
    "MapVolume.a_whole_volume*" "Legend.the_description*" "Legend.unit_and_locale*" "Presets.show_tells*"
)
parts+=("test_cli $(IFS=:; echo "${commands[*]}")")

cases_of() {
    "$1" --gtest_list_tests 2>/dev/null | awk '/^[^ ]/ { suite = $1 } /^  / { print suite $1 }'
}

# Patterns of a filter that match no case, behind "-" none that would run without them: they would check nothing.
idle_patterns() {
    local program="$1" wanted="${2%%-*}" unwanted="" case pattern
    local -A matched=()
    [[ "$2" != *-* ]] || unwanted="${2#*-}"
    local -a some others
    IFS=: read -r -a some <<<"$wanted"
    IFS=: read -r -a others <<<"$unwanted"
    while read -r case; do
        local selected=0
        for pattern in "${some[@]}"; do
            # shellcheck disable=SC2053  # a pattern, of the same form as the filter's
            if [[ "$case" == $pattern ]]; then matched["$pattern"]=1 selected=1; fi
        done
        for pattern in "${others[@]}"; do
            # shellcheck disable=SC2053
            if ((selected)) && [[ "$case" == $pattern ]]; then matched["-$pattern"]=1; fi
        done
    done < <(cases_of "$program")
    for pattern in "${some[@]}" "${others[@]/#/-}"; do
        [[ -z "$pattern" || -n "${matched["$pattern"]:-}" ]] || printf '%s\n' "$pattern"
    done
}

check_patterns() {
    local part program filter idle
    for part in "${parts[@]}"; do
        read -r program filter <<<"$part"
        [ -x "$build/tests/$program" ] || fail "$build/tests/$program is not built"
        idle="$(idle_patterns "$build/tests/$program" "$filter")"
        [ -z "$idle" ] || fail "no case of $program matches: $idle"
    done
}

save() {
    local to="$1"
    mkdir "$to"
    local -x XDG_DATA_HOME="$to/data"
    "$build/bin/colortable" create stepped --from=-1.5 --to 2.25 --step 0.3 --type Rainbow -o "$to/stepped.json"
    "$build/bin/colortable" create smooth --from 1e-7 --to 1234567.875 --type BlackGreenBlueRed --quantity Angle -o "$to/smooth.json"
    "$build/bin/colortable" map --table "$to/stepped.json" --at=-1.5,0.1,1e-3,nan,2.25 >"$to/colors.txt"
    "$build/bin/colortable" info "$to/smooth.json" --json | sed "s|$to|folder|" >"$to/info.json"
    "$build/bin/colortable" legend --table "$to/smooth.json" --size 200x300 --locale C --set Size=0.25 --describe >"$to/legend.json"
    "$build/bin/colortable" legend --table "$to/stepped.json" --size 200x300 --dpi 150.5 --unit mm --set Color=0.1,0.25,1 -o "$to/legend.svg"
    "$build/bin/colortable" map --table "$to/stepped.json" -i builtin:casting@16 --range=auto -o "$to/slice.nrrd"
    "$build/bin/colortable" presets save "I ı i İ 0,5" --table "$to/stepped.json" --absolute
    "$build/bin/colortable" presets export "I ı i İ 0,5" -o "$to/preset.json"
    local analysis ending
    for analysis in defect-volume wall-thickness; do
        for ending in csv json; do
            "$build/bin/workbench" builtin:casting@16 --analysis "$analysis" --preset Rainbow --report "$to/$analysis.$ending" \
                2>"$to.log" || { cat "$to.log" >&2; fail "workbench --analysis $analysis --report fails in $LC_ALL"; }
        done
    done
}

run_parts() {
    local part program filter log="$1"
    for part in "${parts[@]}"; do
        read -r program filter <<<"$part"
        "$build/tests/$program" --gtest_brief=1 --gtest_filter="$filter" >"$log" 2>&1 ||
            { tail -n 60 "$log" >&2; fail "$program fails in $LC_ALL"; }
        grep -q '\[  PASSED  \] [1-9]' "$log" || fail "no case of $program ran in $LC_ALL"
        printf '%-14s %-23s %s\n' "$LC_ALL" "$program" "$(grep -o '[1-9][0-9]* tests\.$' "$log")"
    done
}

run_in() {
    export LC_ALL="$1" LD_PRELOAD="$use_locale"
    set -E
    trap 'printf "run_in_locales: %s fails in %s\n" "$BASH_COMMAND" "$LC_ALL" >&2' ERR
    run_parts "$work/$1.log"
    save "$work/$1"
}

wait_for() {
    local job failed=0
    for job in "$@"; do
        wait "$job" || failed=1
    done
    ((!failed)) || exit 1
}

declare -A point=([C]="." [de_DE.UTF-8]="," [fr_FR.UTF-8]="," [tr_TR.UTF-8]="," [ar_EG.UTF-8]=".")
for locale in de_DE fr_FR tr_TR ar_EG; do
    localedef -c -i "$locale" -f UTF-8 "$LOCPATH/$locale.UTF-8" 2>/dev/null &
done
wait
for locale in "${!point[@]}"; do
    [ "$(LC_ALL="$locale" locale decimal_point)" = "${point[$locale]}" ] ||
        fail "the locale $locale could not be made; is the package \"locales\" installed?"
done
check_patterns
# Two at a time.
jobs=()
for locale in "${!point[@]}"; do
    (run_in "$locale") &
    jobs+=("$!")
    if [ "${#jobs[@]}" = 2 ]; then
        wait_for "${jobs[@]}"
        jobs=()
    fi
done
wait_for "${jobs[@]}"
for locale in "${!point[@]}"; do
    diff -r "$work/C" "$work/$locale" >&2 || fail "$locale saves other bytes than C"
done

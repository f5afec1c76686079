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

# Program and cases: files, texts of numbers, headers, names. Cases of what a person reads choose their locale themselves.
# Files that the toolkit for images writes are left out: in German it writes the numbers of its headers with a comma.
parts=(
    "test_lyr_core LyrObjectFile*:LyrFileSaver*:LyrString*:LyrQuantity*:Lyrenum*:LyrMetaClass*"
    "test_lys_core UnitConverter.*:Placeholders.*"
    "test_colortable EveryProperty*:*/EveryProperty*"
    "test_fuzz *"
    "test_lyr_volume *Reader.*:-*cut*:*damaged*:LyrVolumeReader.*casting*"
    "test_colortable_model TableGenerators*"
)
# Each of these cases runs the program once or more: one or two of each command, of those that write or read numbers.
commands=(
    "Create.a_smooth_table*" "Create.stepped_tables*" "Info.the_rainbow*" "Info.a_table_file*" "Info.a_volume_is_told*"
    "MapAt.the_default_rainbow*" "MapAt.values_are_the_nearest*" "MapAt.denormals*" "MapRange.positions_are_formed*"
    "MapVolume.a_whole_volume*" "Legend.the_description*" "Legend.unit_and_locale*" "Presets.show_tells*"
)
parts+=("test_cli $(IFS=:; echo "${commands[*]}")")
save() {
    local to="$1"
    mkdir "$to"
    "$build/bin/colortable" create stepped --from=-1.5 --to 2.25 --step 0.3 --type Rainbow -o "$to/stepped.json"
    "$build/bin/colortable" create smooth --from 1e-7 --to 1234567.875 --type BlackGreenBlueRed --quantity Angle -o "$to/smooth.json"
    "$build/bin/colortable" map --table "$to/stepped.json" --at=-1.5,0.1,1e-3,nan,2.25 >"$to/colors.txt"
    "$build/bin/colortable" info "$to/smooth.json" --json | sed "s|$to|folder|" >"$to/info.json"
    "$build/bin/colortable" legend --table "$to/smooth.json" --size 200x300 --locale C --set Size=0.25 --describe >"$to/legend.json"
    "$build/bin/colortable" map --table "$to/stepped.json" -i builtin:casting@16 --range=auto -o "$to/slice.nrrd"
}

run_parts() {
    local part program filter
    for part in "${parts[@]}"; do
        read -r program filter <<<"$part"
        [ -x "$build/tests/$program" ] || fail "$build/tests/$program is not built"
        "$build/tests/$program" --gtest_brief=1 --gtest_filter="$filter" >"$work/log" 2>&1 ||
            { tail -n 60 "$work/log" >&2; fail "$program fails in $LC_ALL"; }
        grep -q '\[  PASSED  \] [1-9]' "$work/log" || fail "no case of $program ran in $LC_ALL"
        printf '%-14s %-22s %s\n' "$LC_ALL" "$program" "$(grep -o 'PASSED.*' "$work/log")"
    done
}

declare -A point=([C]=. [de_DE.UTF-8]=, [fr_FR.UTF-8]=, [tr_TR.UTF-8]=, [ar_EG.UTF-8]=.)
for locale in de_DE fr_FR tr_TR ar_EG; do
    localedef -c -i "$locale" -f UTF-8 "$LOCPATH/$locale.UTF-8" 2>/dev/null || true
done
for locale in C de_DE.UTF-8 fr_FR.UTF-8 tr_TR.UTF-8 ar_EG.UTF-8; do
    [ "$(LC_ALL="$locale" locale decimal_point)" = "${point[$locale]}" ] ||
        fail "the locale $locale could not be made; is the package \"locales\" installed?"
    (
        export LC_ALL="$locale" LD_PRELOAD="$use_locale"
        run_parts
        save "$work/$locale"
    )
    diff -r "$work/C" "$work/$locale" >&2 || fail "$locale saves other bytes than C"
done

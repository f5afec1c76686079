#!/usr/bin/env bash
# Which branches of the object framework's properties, journal and files and of the colour tables the tests take.
# usage: scripts/coverage.sh [LIMIT]     ends with a status other than 0 when a part lies below LIMIT percent (95)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

limit="${1:-95}"
build=build/coverage
profiles="$build/profiles"
programs=(test_lyr_core test_lyr_core_memory test_colortable_eval test_colortable_model)

cmake --preset coverage --log-level=NOTICE --no-warn-unused-cli
cmake --build --preset coverage -j"$(nproc)"

rm -rf "$profiles"
for program in "${programs[@]}"; do
    # Counters lie in the file itself (%c), so that processes that a test starts and kills count as well.
    QT_QPA_PLATFORM=offscreen LLVM_PROFILE_FILE="$PWD/$profiles/$program-%c%m.profraw" \
        "$build/tests/$program" --gtest_brief=1
done
llvm-profdata-14 merge --sparse -o "$build/merged.profdata" "$profiles"/*.profraw
objects=("$build/tests/${programs[0]}")
for object in "${programs[@]:1}"; do
    objects+=(-object "$build/tests/$object")
done
llvm-cov-14 export "${objects[@]}" -object "$build/lib/liblyr_core.so" -object "$build/lib/lys/liblys_colortable.so" \
    -instr-profile="$build/merged.profdata" host/lyr_core colortable/model >"$build/export.json"
python3 scripts/branch_report.py "$build/export.json" "$limit"

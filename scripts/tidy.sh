#!/usr/bin/env bash
# Runs clang-tidy over the sources of the repository, or over those named, as the release build compiles them.
# usage: scripts/tidy.sh [SOURCE.cpp...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

commands=build/release/compile_commands.json
[ -f "$commands" ] || {
    echo "tidy: $commands is missing; configure first: cmake --preset release" >&2
    exit 2
}
# clang does not know every switch of the compiler that the build is configured for.
mkdir -p build/tidy
sed 's/ -fno-gnu-unique\b//g' "$commands" >build/tidy/compile_commands.json

sources=("$@")
if [ ${#sources[@]} -eq 0 ]; then
    mapfile -d '' sources < <(git ls-files -z 'host/*.cpp' 'colortable/*.cpp' 'cli/*.cpp' 'toolkit/*.cpp' 'analysis/*.cpp' 'workbench/*.cpp')
fi
echo "Checking ${#sources[@]} sources."
printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/tidy --quiet --warnings-as-errors='*'

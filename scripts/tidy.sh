#!/usr/bin/env bash
# Runs clang-tidy over the sources of the repository, or over those named, as the release build compiles them.
# Nothing has to be built first: no source includes what a build generates.
# usage: [LYS_JOBS=N] scripts/tidy.sh [SOURCE.cpp|FOLDER...]
#   LYS_JOBS   how many sources at a time; one for each processor if not set
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

commands=build/release/compile_commands.json
[ -f "$commands" ] || {
    echo "tidy: $commands is missing; configure first: cmake --preset release" >&2
    exit 2
}
mkdir -p build/tidy
# Sources that several targets compile are checked once; clang does not know every switch of the configured compiler. The
# analyzer takes no function of a system header for one that keeps what it is given, though most of the toolkit's do.
python3 - "$commands" >build/tidy/compile_commands.json <<'EOT'
import json
import re
import sys

with open(sys.argv[1], encoding="utf-8") as file:
    first = {}
    for entry in json.load(file):
        command = entry["command"].replace(" -fno-gnu-unique", "")
        entry["command"] = re.sub(r"-isystem (/\S*/qt6\b)", r"-I\1", command)
        first.setdefault(entry["file"], entry)
json.dump(list(first.values()), sys.stdout, indent=1)
EOT

folders=("$@")
[ ${#folders[@]} -gt 0 ] || folders=(host colortable cli toolkit analysis workbench)
mapfile -d '' sources < <(git ls-files -z -- "${folders[@]}" | grep -z '\.cpp$')
[ ${#sources[@]} -gt 0 ] || {
    echo "tidy: no source of the repository in: ${folders[*]}" >&2
    exit 2
}
echo "Checking ${#sources[@]} sources."
# Of what clang counts on standard error, remarks in headers of others for the most part, errors alone are of interest.
printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "${LYS_JOBS:-$(nproc)}" \
    clang-tidy -p build/tidy --quiet --warnings-as-errors='*' 2> >(grep -v '^[0-9]* warnings\? .*generated\.$' >&2)

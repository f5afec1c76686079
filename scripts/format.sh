#!/usr/bin/env bash
# Formats every C++ source of the repository with clang-format; --check only tells what would change.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mode=(-i)
case "${1:-}" in
    "") ;;
    --check) mode=(--dry-run --Werror) ;;
    *)
        echo "usage: scripts/format.sh [--check]" >&2
        exit 2
        ;;
esac

mapfile -d '' sources < <(git ls-files -z '*.h' '*.cpp' ':!tests/arrows/fixture')
clang-format "${mode[@]}" "${sources[@]}"
echo "${#sources[@]} files are formatted."

#!/usr/bin/env bash
# Checks the #include lines of every source below ROOT (default: this repository) against arrows.txt.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
cd "${1:-$here/../..}"

folders=()
for folder in host toolkit colortable cli analysis workbench examples; do
    [ ! -d "$folder" ] || folders+=("$folder")
done
[ ${#folders[@]} -gt 0 ] || { echo "check_arrows: no source folder in $PWD" >&2; exit 1; }

mapfile -d '' sources < <(find "${folders[@]}" -type f \( -name '*.h' -o -name '*.cpp' \) -print0 | LC_ALL=C sort -z)
exec awk -f "$here/check_arrows.awk" "$here/arrows.txt" "${sources[@]}"

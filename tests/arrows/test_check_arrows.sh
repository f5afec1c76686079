#!/usr/bin/env bash
# Holds the checker's verdict on the planted sources of fixture/ against the lines worked out in expected.txt.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
status=0
found="$("$here/check_arrows.sh" "$here/fixture")" || status=$?
diff -u "$here/expected.txt" <(printf '%s\n' "$found")
[ "$status" -eq 1 ] || { echo "the checker ended with status $status, not 1" >&2; exit 1; }

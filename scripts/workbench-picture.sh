#!/usr/bin/env bash
# Makes docs/images/workbench.png, the README's picture of the window, with what build/release holds.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
xvfb-run -a -s "-screen 0 1600x1200x24" "$root/build/release/bin/workbench" builtin:casting@256 \
    --screenshot "$root/docs/images/workbench.png" --size 1280x860
echo "docs/images/workbench.png is made."

#!/usr/bin/env bash
# Makes the pictures of legends in docs/images anew.
set -euo pipefail
cd "$(dirname "$0")/.."
colortable=build/release/bin/colortable
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$colortable" create stepped --from 0 --to 10 --step 1 -o "$work/steps.json"
"$colortable" create smooth --from -0.5 --to 0.5 --type InvertedRainbow -o "$work/smooth.json"
dark=(--set Color=0.1,0.1,0.1 --set HasOutline=false)
for dpi in 96 192; do
  scale=$((dpi / 96))
  "$colortable" legend --table "$work/steps.json" --set 'DescriptionTemplate=Wall thickness [%l]' "${dark[@]}" \
    --dpi $dpi --size $((150 * scale))x$((320 * scale)) -o docs/images/legend-vertical-$dpi.png
  "$colortable" legend --table "$work/smooth.json" --set 'DescriptionTemplate=Deviation [%l]' --set Position=Bottom \
    --set TextPosition=Left "${dark[@]}" --dpi $dpi --size $((520 * scale))x$((56 * scale)) \
    -o docs/images/legend-horizontal-$dpi.png
done

#!/usr/bin/env python3
"""Branch figures of parts of the sources, from what `llvm-cov export` wrote.

usage: scripts/branch_report.py EXPORT.json LIMIT

A branch is one outcome of a condition in the sources: each `if`, `?:`, loop and operand of `&&` or `||` has two. One in a
template counts once, and as taken when any of its instantiations took it. Left out are conditions that the compiler
decides, and that a function which only tells an error (`... || fail(...)`) gives true: it never does. Prints figures for each file and each part, and the branches that no test took; ends with status 1 if a part lies
below LIMIT percent.
"""
import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

PARTS = {
    "colour tables": r"colortable/model/.*",
    "properties and journal": r"host/lyr_core/Lyr(Property|PropertyTraits|PropertyPtr|SingleValueProperty|ValueArrayProperty"
                              r"|LinkProperty|LinkSlot_p|BooleanOP|ReadOnlyProxyExtension|SameValue|UndoJournal|WholeWrite"
                              r"|ValueList|EmbeddedList)\.(cpp|h)",
    "object files": r"host/lyr_core/Lyr(ObjectFile|ObjectToJson|ObjectFromJson|ObjectJson_p|ObjectUnknownData_p|JsonCodec"
                    r"|JsonCodec_p|JsonValue|JsonValue_p|FileIo|FileIo_p|FileSaver)\.(cpp|h)",
}


def part_of(name):
    return next((part for part, pattern in PARTS.items() if re.fullmatch(pattern, name)), None)


def read_branches(export):
    """{file: {(line, column): [name of the condition, count of true, count of false]}}, summed over instantiations."""
    found = {}
    for data in export["data"]:
        for function in data["functions"]:
            names = [relative(name) for name in function["filenames"]]
            for line, column, end_line, end_column, true, false, file_id, *_ in function["branches"]:
                name = names[file_id]
                if not name or not part_of(name):
                    continue
                place = (line, column, end_line, end_column)
                counts = found.setdefault(name, {}).setdefault(place, [0, 0])
                counts[0] += true
                counts[1] += false
    return found


def relative(name):
    try:
        return str(pathlib.Path(name).resolve().relative_to(ROOT))
    except ValueError:
        return None


def text_of(lines, place):
    line, column, end_line, end_column = place
    if line == end_line:
        return lines[line - 1][column - 1:end_column - 1]
    return lines[line - 1][column - 1:].strip() + " ..."


# These tell an error and give false, always.
TELLS_AN_ERROR = re.compile(r"((this->|property\.|property->)?(emitError|reportFailedWrite)|fail|refused|unreadable)\(")


def decided_by_compiler(lines, place):
    before = lines[place[0] - 1][:place[1] - 1]
    return "if constexpr" in before or text_of(lines, place) == "true"


def main():
    export_path, limit = sys.argv[1], float(sys.argv[2])
    with open(export_path, encoding="utf-8") as file:
        branches = read_branches(json.load(file))
    totals = {part: [0, 0] for part in PARTS}
    missing = []
    print(f"{'branches':>9} {'taken':>7} {'%':>7}  file")
    for name in sorted(branches):
        lines = (ROOT / name).read_text(encoding="utf-8").splitlines()
        count = taken = 0
        for place, counts in sorted(branches[name].items()):
            if decided_by_compiler(lines, place):
                continue
            for outcome, times in zip(("true", "false"), counts):
                if outcome == "true" and TELLS_AN_ERROR.match(text_of(lines, place)):
                    continue
                count += 1
                taken += times > 0
                if times == 0:
                    missing.append(f"{name}:{place[0]}:{place[1]}: never {outcome}: {text_of(lines, place)}")
        totals[part_of(name)][0] += count
        totals[part_of(name)][1] += taken
        if count:
            print(f"{count:9} {taken:7} {100 * taken / count:7.2f}  {name}")
    print("\nBranches that no test takes:")
    print("\n".join(missing) if missing else "none")
    print()
    good = True
    for part, (count, taken) in totals.items():
        share = 100 * taken / count if count else 0.0
        good = good and share >= limit
        print(f"{count:9} {taken:7} {share:7.2f}  {part}{'' if share >= limit else f'  (below {limit:g} %)'}")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())

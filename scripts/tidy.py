#!/usr/bin/env python3
"""Runs clang-tidy over the sources of the repository, or over those named, as the release build compiles them.

usage: scripts/tidy.py [--jobs N] [--together N] [SOURCE.cpp|FOLDER...]

Most of the time would go into the same headers again and again. Sources of one folder that are compiled alike are
therefore put one behind the other (--together, 8) and checked at once; remarks are told at the places that they belong
to. Sources that do not compile together are checked alone. Nothing has to be built first: no source includes what a build
generates. Ends with status 1 if there is a remark.
"""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
COMMANDS = ROOT / "build" / "release" / "compile_commands.json"
WORK = ROOT / "build" / "tidy"
FOLDERS = ["host", "colortable", "cli", "toolkit", "analysis", "workbench"]

# Debian's ITK takes the compiler alone that it was built with.
ITK_PRELUDE = """#undef __clang__
#undef __GNUC__
#define __GNUC__ 12
#include <itk_compiler_detection.h>
#include <vcl_compiler_detection.h>
#undef __GNUC__
#define __GNUC__ 4
#define __clang__ 1
"""


def fail(message):
    print(f"tidy: {message}", file=sys.stderr)
    sys.exit(2)


def options_of(entry):
    """What a source is compiled with, as clang likes it."""
    words = shlex.split(entry["command"])
    first = next(i for i, word in enumerate(words) if pathlib.Path(word).name in ("c++", "g++", "clang++", "ccache"))
    while pathlib.Path(words[first]).name == "ccache":
        first += 1
    kept = []
    skip = False
    for word in words[first + 1:]:
        if skip:
            skip = False
        elif word in ("-o", "-c"):
            skip = True
        elif word != "-fno-gnu-unique":
            kept.append(word)
    for i, word in enumerate(kept[1:], 1):
        # The analyzer takes no function of a system header for one that keeps what it is given; the toolkit's do.
        if kept[i - 1] == "-isystem" and "/qt6" in word:
            kept[i - 1] = "-I"
    if any("/ITK" in word for word in kept):
        kept += ["-include", str(WORK / "itk_prelude.h")]
    return kept


class Group:
    """Sources of one folder that are compiled alike."""

    def __init__(self, sources, entry):
        self.sources = sources
        self.directory = entry["directory"]
        self.options = options_of(entry)

    def check(self, name):
        """Returns the remarks as text, and the sources that the compiler refused beside the others."""
        file = self.sources[0]
        starts = []
        if len(self.sources) > 1:
            file = WORK / f"{name}.cpp"
            starts = self.join(file)
        folder = self.sources[0].parent
        run = subprocess.run(
            ["clang-tidy", "--quiet", "--warnings-as-errors=*", "--config=" + (ROOT / ".clang-tidy").read_text(),
             str(file), "--", *self.options, "-iquote", str(folder)],
            cwd=self.directory, capture_output=True, text=True)
        text = self.at_home(run.stdout, file, starts)
        if run.returncode != 0 and not text.strip():
            text = run.stderr
        refused = []
        if len(self.sources) > 1 and "clang-diagnostic-error" in text:
            lines = [line for line in text.splitlines() if "clang-diagnostic-error" in line]
            refused = [source for source in self.sources if any(line.startswith(f"{source}:") for line in lines)]
            refused = refused or self.sources[1:]
        return ("" if run.returncode == 0 else text), refused

    def join(self, file):
        """Writes the sources one behind the other, with the same number of lines; returns where each begins. A header
        that a source before has included already would be told as included twice."""
        included = set()
        lines = []
        starts = []
        for source in self.sources:
            starts.append(len(lines))
            before = set(included)
            for line in source.read_text(encoding="utf-8").splitlines():
                match = re.match(r"#include ([<\"].*[>\"])", line)
                if match and match[1] in before:
                    before.remove(match[1])
                    line = ""
                elif match:
                    included.add(match[1])
                lines.append(line)
        file.write_text("\n".join(lines) + "\n", encoding="utf-8")
        return starts

    def at_home(self, text, file, starts):
        """Remarks about the joined sources, told of the source and line they stand in."""
        if not starts:
            return text

        def home(match):
            line = int(match[1]) - 1
            which = max(i for i, start in enumerate(starts) if start <= line)
            return f"{self.sources[which]}:{line - starts[which] + 1}:"

        return re.sub(re.escape(str(file)) + r":(\d+):", home, text)


def sources_of(names):
    found = {}
    for name in names:
        listed = subprocess.run(["git", "ls-files", "-z", "--", name], cwd=ROOT, capture_output=True, text=True, check=True)
        sources = [ROOT / file for file in listed.stdout.split("\0") if file.endswith(".cpp")]
        if not sources:
            fail(f"{name} is no source of the repository, and no folder with any")
        found.update(dict.fromkeys(sources))
    return list(found)


def groups_of(sources, together):
    entries = {}
    for entry in json.loads(COMMANDS.read_text()):
        entries.setdefault(entry["file"], entry)
    alike = collections.defaultdict(list)
    for source in sources:
        if str(source) not in entries:
            fail(f"{source.relative_to(ROOT)} is not compiled; configure anew: cmake --preset release")
        alike[(source.parent, *options_of(entries[str(source)]))].append(source)
    # Vector code includes itself for each kind of processor.
    groups = []
    for same in alike.values():
        alone = [source for source in same if "foreach_target.h" in source.read_text(encoding="utf-8")]
        others = [source for source in same if source not in alone]
        parts = [others[i:i + together] for i in range(0, len(others), together)] + [[source] for source in alone]
        groups += [Group(part, entries[str(part[0])]) for part in parts]
    return groups, entries


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--jobs", type=int, default=int(os.environ.get("LYS_JOBS", os.cpu_count() or 1)))
    parser.add_argument("--together", type=int, default=8)
    parser.add_argument("sources", nargs="*", default=FOLDERS)
    options = parser.parse_args()
    if not COMMANDS.is_file():
        fail(f"{COMMANDS.relative_to(ROOT)} is missing; configure first: cmake --preset release")
    WORK.mkdir(parents=True, exist_ok=True)
    (WORK / "itk_prelude.h").write_text(ITK_PRELUDE)
    sources = sources_of(options.sources)
    groups, entries = groups_of(sources, max(1, options.together))
    print(f"Checking {len(sources)} sources in {len(groups)} groups.", flush=True)
    started = time.monotonic()
    remarked = set()

    def check(number, group):
        text, refused = group.check(f"group{number}")
        if refused:
            kept = [source for source in group.sources if source not in refused]
            parts = [[source] for source in refused] + ([kept] if kept else [])
            return [result for i, part in enumerate(parts)
                    for result in check(f"{number}-{i}", Group(part, entries[str(part[0])]))]
        return [(group, text)]

    with concurrent.futures.ThreadPoolExecutor(max(1, options.jobs)) as pool:
        for done in concurrent.futures.as_completed([pool.submit(check, i, group) for i, group in enumerate(groups)]):
            for group, text in done.result():
                if text:
                    print(text, flush=True)
                    remarked |= set(re.findall(r"^(\S+:\d+:\d+: .*error: .*)$", text, re.M)) or {text}
    print(f"{len(remarked)} remarks in {len(sources)} sources, {time.monotonic() - started:.0f} s.")
    return 1 if remarked else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Changes operators and numbers of the colour evaluation and of the table generators, one at a time, and runs the tests
each time: a change that no test notices shows what the tests do not check.

usage: scripts/mutate.py [--group eval|model] [--file PART] [--constants N] [--seed N] [--longest SECONDS]
                         [--minutes N] [--again] [--keep]

The sources are copied to build/mutation and rewritten there so that an environment variable chooses the mutant while
the tests run; they are compiled once. Of what is in the program and no test comes by, every mutant has survived untried:
it counts, as "not reached". What the compiler alone evaluates (constants, array sizes, arguments of templates) cannot be
chosen so, and leaves nothing in the program: of those mutants a sample (--constants, 60) is compiled one by one. A mutant
is killed when a test fails, the program dies or takes too long. Mutants that make no difference to any result stand in
scripts/mutation/equivalent.txt with the reason. Four figures come out, for both test programs what can be chosen and what
has to be compiled; the script ends with status 1 if one of them says that less than 90 % of the others are killed.
"""
import argparse
import json
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "mutation"))
from mutants import Finder, rewrite  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutation"
EVAL = "colortable/model/eval/"
LIMIT = 90.0
LONGEST_RUN = 1800  # seconds by the clock


class EvalGroup:
    """The evaluation on plain data: a program of its own sources and tests, nothing else."""
    name = "eval"
    # Beyond the end of an array, or where a shift is none, a program stops, as under the sanitizers that the tests run
    # with as well.
    flags = ["-std=c++20", "-O1", "-w", "-ffp-contract=off", "-fsanitize=bounds,object-size,shift,alignment",
             "-fsanitize-undefined-trap-on-error"]

    def __init__(self):
        self.tree = WORK / "eval"
        self.files = sorted(str(p.relative_to(ROOT)) for p in (ROOT / EVAL).iterdir() if p.suffix in (".cpp", ".h"))
        self.units = [f for f in self.files if f.endswith(".cpp")]
        self.tests = sorted(str(p.relative_to(ROOT)) for p in (ROOT / "tests/colortable/eval").glob("*.cpp"))
        self.program = self.tree / "test_eval"

    def sources(self):
        return self.files + [str(p.relative_to(ROOT)) for p in (ROOT / "tests/colortable/eval").iterdir()]

    def object_of(self, unit):
        return self.tree / "objects" / (unit.replace("/", "_") + ".o")

    def compile(self, unit, extra=()):
        self.object_of(unit).parent.mkdir(exist_ok=True)
        return run(["g++", *self.flags, *extra, "-I", str(self.tree), "-c", str(self.tree / unit), "-o",
                    str(self.object_of(unit))])

    def link(self):
        return run(["g++", *[str(self.object_of(u)) for u in self.units + self.tests], "-o", str(self.program), "-lgtest_main",
                    "-lgtest", "-lhwy", "-pthread"])

    def units_of(self, file):
        return [file] if file.endswith(".cpp") else [u for u in self.units if self.includes(u, file)]

    def includes(self, unit, file, seen=None):
        seen = set() if seen is None else seen
        for name in re.findall(r"#include <(colortable/[^>]+)>", (ROOT / unit).read_text()):
            if name == file or (name not in seen and not seen.add(name) and (ROOT / name).exists() and
                                self.includes(name, file, seen)):
                return True
        return False

    def is_current(self, unit):
        built = self.object_of(unit)
        sources = [unit] + [f for f in self.files if self.includes(unit, f)]
        return built.exists() and all((self.tree / f).stat().st_mtime < built.stat().st_mtime for f in sources)

    def build(self, extra):
        for unit in self.units + self.tests:
            if self.is_current(unit):
                continue
            done = self.compile(unit, extra)
            if done.returncode != 0:
                return done
        newest = max(self.object_of(u).stat().st_mtime for u in self.units + self.tests)
        current = self.program.exists() and self.program.stat().st_mtime > newest
        return run(["true"]) if current else self.link()

    def rebuild(self, file):
        for unit in self.units_of(file):
            done = self.compile(unit)
            if done.returncode != 0:
                return done
        return self.link()

    filter = "*"
    outside = r"$^"
    environment = {}


class ModelGroup:
    """Generators and evaluation of table objects: the release build of a copy of the whole tree."""
    name = "model"
    outside = r"LyrClassFactory|LyrObject::metaClass|setFlags|setProtectedFlags|resetData"  # no evaluation
    filter = "*TableGenerators*:ScarceGenerators*:*LyrColorLookupTable*"  # parametrised suites have a word before
    environment = {"QT_QPA_PLATFORM": "offscreen"}

    def __init__(self):
        self.tree = WORK / "model"
        self.files = ["colortable/model/" + f for f in ("TableGenerators.cpp", "LyrColorLookupTable.cpp",
                                                        "LyrColorLookupTableSection.cpp")]
        self.program = self.tree / "build/release/tests/test_colortable_model"

    def sources(self):
        names = subprocess.run(["git", "ls-files", "-z", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                               stdout=subprocess.PIPE).stdout.decode().split("\0")
        return [name for name in names if name and (ROOT / name).is_file()]

    def build(self, _extra):
        done = run(["cmake", "--preset", "release", "--log-level=ERROR"], cwd=self.tree)
        return done if done.returncode != 0 else self.rebuild(None)

    def rebuild(self, _file):
        return run(["cmake", "--build", "--preset", "release", "-j2", "--target", "test_colortable_model"], cwd=self.tree)


def copy_sources(group, names):
    for name in names:
        target = group.tree / name
        if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)


def run(command, cwd=None):
    environment = dict(os.environ, CCACHE_NOHASHDIR="1")
    environment.setdefault("CCACHE_BASEDIR", str(ROOT))
    return subprocess.run(command, cwd=cwd, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def find_all(group):
    """{file: sites}, the mutants numbered."""
    found = {}
    number = 0
    for name in group.files:
        found[name] = Finder(name, (ROOT / name).read_text()).find()
        for site in found[name]:
            for mutant in site.mutants:
                mutant.id = number
                number += 1
    return found, number


def write_rewritten(group, found, count, dropped):
    header = f'#define LYS_MUTANT_COUNT {count}\n#include "{group.tree}/lys_mutation.h"\n#line 1\n'
    for name, sites in found.items():
        text = rewrite((ROOT / name).read_text(), [s for s in sites if s.mutants[0].id not in dropped])
        if group.name == "model":
            text = header + text
        if name.endswith("VectorBase-inl.h"):
            operations = (ROOT / "scripts/mutation/vector_mutation.inc").read_text()
            alias = "namespace hn = hwy::HWY_NAMESPACE;\n"
            line = text[:text.index(alias)].count("\n") + 2
            text = text.replace(alias, alias + operations + f"#line {line}\n")
        target = group.tree / name
        if not target.exists() or target.read_text() != text:
            target.write_text(text)


def drop_named_lines(output, found, dropped):
    """Leaves sites out whose lines the compiler complains about; false if there is none."""
    before = len(dropped)
    for name, line in re.findall(r"([\w/.-]+\.(?:cpp|h)):(\d+):(?:\d+:)? (?:error|  required from|\s+in )", output):
        for known, sites in found.items():
            if name.endswith(known):
                dropped.update(s.mutants[0].id for s in sites if s.mutants[0].line == int(line))
    return len(dropped) > before


def build_rewritten(group, found, count):
    """Compiles all mutants into one program, but for those that do not compile so."""
    header = "scripts/mutation/lys_mutation.h"
    if not (group.tree / "lys_mutation.h").exists():
        shutil.copy(ROOT / header, group.tree / "lys_mutation.h")
    notes = group.tree / "dropped.json"
    dropped = set(json.loads(notes.read_text())) if notes.exists() else set()
    extra = [f"-DLYS_MUTANT_COUNT={count}"]
    if group.name == "eval":
        extra += ["-include", str(group.tree / "lys_mutation.h")]
    for _ in range(30):
        write_rewritten(group, found, count, dropped)
        done = group.build(extra)
        if done.returncode == 0:
            notes.write_text(json.dumps(sorted(dropped)))
            return
        if not drop_named_lines(done.stdout, found, dropped):
            break
    sys.exit(f"mutate: the rewritten sources do not compile:\n{done.stdout[-4000:]}")


def run_tests(group, tests, seconds, environment=None):
    """The program's status, 0 if all pass. `seconds` of processor time, or all memory but 4 GiB, are a failure as well."""
    def limit():
        os.nice(5)
        resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
        resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    try:
        return subprocess.run([str(group.program), "--gtest_brief=1", "--gtest_fail_fast"],
                              env=dict(os.environ, GTEST_FILTER=tests, **group.environment, **(environment or {})),
                              preexec_fn=limit, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              timeout=LONGEST_RUN).returncode
    except subprocess.TimeoutExpired:
        return -9  # killed by now; one that waits takes no processor time


def baseline(group, reached_file):
    """Runs the tests without a mutant: how long each takes, what is in the program and what of it is reached."""
    times = group.tree / "times.json"
    reached_file.unlink(missing_ok=True)
    environment = dict(os.environ, GTEST_FILTER=group.filter, LYS_MUTANTS_REACHED=str(reached_file), **group.environment)
    done = subprocess.run([str(group.program), f"--gtest_output=json:{times}", "--gtest_brief=1"], env=environment)
    if done.returncode != 0:
        sys.exit("mutate: the tests fail without any mutant")


def read_reached(reached_file):
    """Numbers of the mutants that are in the program, and of those that the tests come by."""
    numbers = {"compiled": set(), "reached": set()}
    for line in reached_file.read_text().splitlines():
        what, number = line.split()
        numbers[what].add(int(number))
    return numbers["compiled"], numbers["reached"]


def plan_runs(group, longest):
    """The tests, quick ones first and together, with the processor time that each run may take."""
    cases = []
    for suite in json.loads((group.tree / "times.json").read_text())["testsuites"]:
        cases += [(float(case["time"].rstrip("s")), f"{suite['name']}.{case['name']}") for case in suite["testsuite"]
                  if case["status"] == "RUN"]
    left_out = [name for seconds, name in cases if seconds > longest]
    if left_out:
        print("left out: " + " ".join(left_out))
    cases = sorted(case for case in cases if case[0] <= longest)
    runs = []
    for bound, low in ((0.05, 0.0), (0.3, 0.05), (1.0, 0.3), (1e9, 1.0)):
        some = [(seconds, name) for seconds, name in cases if low <= seconds < bound]
        if some:
            runs.append((":".join(name for _, name in some), int(10 + 5 * sum(seconds for seconds, _ in some))))
    return runs


def kills(group, runs, environment=None):
    """How the tests notice: 'killed', 'timed out', or None."""
    for tests, seconds in runs:
        status = run_tests(group, tests, seconds, environment)
        if status in (-24, -9):
            return "timed out"
        if status != 0:
            return "killed"
    return None


class Equivalents:
    """What scripts/mutation/equivalent.txt says of a group's mutants."""

    def __init__(self, files, mutants):
        self.reasons = {}
        lines = (ROOT / "scripts/mutation/equivalent.txt").read_text().splitlines()
        for number, text in enumerate(lines, 1):
            if not text.strip() or text.startswith("#"):
                continue
            file, line, change, reason = text.split("\t")
            if file not in files:
                continue
            change, *which = change.split(" #")
            found = [m for m in mutants if m.file == file and self.fits(m.source_line, line) and self.fits(m.change, change)]
            if which:
                found = [found[int(n) - 1] for n in which[0].split(",") if int(n) <= len(found)]
            if not found:
                sys.exit(f"mutate: equivalent.txt:{number}: no mutant is like this")
            self.reasons |= {m.id: reason for m in found}

    def reason(self, mutant):
        return self.reasons.get(mutant.id)

    @staticmethod
    def fits(text, pattern):
        return pattern == "*" or re.fullmatch(".*".join(map(re.escape, pattern.split("..."))), text) is not None


def try_compiled(group, mutant, runs):
    """Compiles one mutant of the sources as they are."""
    text = (ROOT / mutant.file).read_text()
    target = group.tree / mutant.file
    target.write_text(text[:mutant.start] + mutant.plain + text[mutant.end:])
    done = group.rebuild(mutant.file)
    outcome = "not compiled" if done.returncode != 0 else kills(group, runs)
    target.write_text(text)
    if done.returncode == 0 or group.name == "eval":
        group.rebuild(mutant.file)
    return outcome


def examine(group, options, results):
    started = time.time()
    if group.tree.exists() and not options.again:
        shutil.rmtree(group.tree)
    found, count = find_all(group)
    copy_sources(group, [name for name in group.sources() if not options.again or name not in found])
    mutants = {m.id: m for sites in found.values() for s in sites for m in s.mutants}
    equivalents = Equivalents(group.files, mutants.values())
    build_rewritten(group, found, count)
    reached_file = group.tree / "reached.txt"
    times = group.tree / "times.json"
    if not (reached_file.exists() and times.exists() and times.stat().st_mtime > group.program.stat().st_mtime):
        baseline(group, reached_file)
    runs = plan_runs(group, options.longest)
    compiled, reached = read_reached(reached_file)
    print(f"{group.name}: {count} mutants, {len(compiled)} of them in the program, {len(reached)} reached, built in "
          f"{time.time() - started:.0f} s", flush=True)
    rest = []
    # In random order, so that what was tried is a fair sample when time runs out.
    order = list(mutants.items())
    random.Random(options.seed).shuffle(order)
    for number, mutant in order:
        if options.file not in mutant.file or re.search(group.outside, mutant.source_line):
            continue
        mutant.at_run_time = number in compiled
        known = options.known.get(key_of(mutant))
        if known in ("killed", "timed out", "not compiled"):
            results.append((mutant, known))
        elif equivalents.reason(mutant):
            results.append((mutant, "equivalent"))
        elif not mutant.at_run_time:
            rest.append(mutant)
        elif number not in reached:
            results.append((mutant, "not reached"))
            tell(results[-1])
        elif time.time() > options.end:
            results.append((mutant, "survived" if known == "survived" else "not tried"))
        else:
            results.append((mutant, kills(group, runs, {"LYS_MUTANT": str(number)}) or "survived"))
            tell(results[-1])
            tried = sum(1 for _, outcome in results if outcome not in ("equivalent", "not reached", "not tried"))
            if tried % 50 == 0:
                print(f"  {tried} tried, {time.time() - started:.0f} s", flush=True)
    compile_some(group, options, runs, rest, results)
    if not options.keep:
        shutil.rmtree(group.tree)


def compile_some(group, options, runs, rest, results):
    """Tries a sample of `rest`, compiled one by one; those that were tried last time are in it."""
    before = sum(1 for mutant, outcome in results if not mutant.at_run_time and outcome in ("killed", "timed out"))
    survivors = [mutant for mutant in rest if options.known.get(key_of(mutant)) == "survived"]
    others = [mutant for mutant in rest if mutant not in survivors]
    wanted = max(0, options.constants - before - len(survivors))
    sample = survivors + random.Random(options.seed).sample(others, min(wanted, len(others)))
    results += [(mutant, "not tried") for mutant in rest if mutant not in sample]
    if sample and time.time() < options.end:
        shutil.rmtree(group.tree)
        copy_sources(group, group.sources())
        done = group.build([])
        if done.returncode != 0:
            sys.exit(f"mutate: the sources do not compile:\n{done.stdout[-4000:]}")
    for mutant in sorted(sample, key=lambda m: m.id):
        late = time.time() > options.end
        outcome = "survived" if mutant in survivors else "not tried"
        results.append((mutant, outcome if late else try_compiled(group, mutant, runs) or "survived"))
        tell(results[-1])


def key_of(mutant):
    return f"{mutant.file}:{mutant.start}:{mutant.change}"


def tell(result):
    mutant, outcome = result
    if outcome not in ("killed", "not tried"):
        print(f"  {outcome}: {mutant.file}:{mutant.line}: {mutant.change}: {mutant.source_line}", flush=True)


OUTCOMES = {"killed": "killed", "timed out": "time-out", "survived": "survived", "not reached": "not reached",
            "equivalent": "equal", "not compiled": "no code", "not tried": "not tried"}


def count_of(results):
    return {name: sum(1 for _, outcome in results if outcome == name) for name in OUTCOMES}


def summarize(results):
    """Prints the figures of each file, and of what has to reach the limit; the program's status."""
    print("\n" + " ".join(f"{title:>11}" for title in OUTCOMES.values()) + "  file")
    for file in sorted({mutant.file for mutant, _ in results}):
        print_row(count_of([(m, outcome) for m, outcome in results if m.file == file]), file)
    print()
    good = True
    for title, some in parts_of(results):
        counts = count_of(some)
        print_row(counts, title)
        killed = counts["killed"] + counts["timed out"]
        tried = killed + counts["survived"] + counts["not reached"]
        share = 100 * killed / tried if tried else 0.0 if counts["not tried"] else 100.0
        good = good and share >= LIMIT
        print(f"{killed} of {tried} mutants killed: {share:.1f} %{'' if share >= LIMIT else f' (below {LIMIT:g} %)'}")
    return 0 if good else 1


def parts_of(results):
    for group in (EvalGroup(), ModelGroup()):
        for at_run_time, title in ((True, "chosen while the tests run"), (False, "compiled one by one")):
            some = [(m, outcome) for m, outcome in results if m.file in group.files and m.at_run_time == at_run_time]
            if some:
                yield f"{group.name}, {title}", some


def print_row(counts, name):
    print(" ".join(f"{count:11}" for count in counts.values()) + f"  {name}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--group", choices=("eval", "model"), help="one of the two test programs only")
    parser.add_argument("--file", default="", help="only files whose path holds this")
    parser.add_argument("--constants", type=int, default=60, help="mutants of each program to compile one by one")
    parser.add_argument("--seed", type=int, default=1, help="chooses those")
    parser.add_argument("--longest", type=float, default=1e9, help="leave out tests that take more seconds")
    parser.add_argument("--minutes", type=float, default=1e6, help="try no more mutants after this time")
    parser.add_argument("--again", action="store_true", help="only those that were not killed last time, and without a clean build")
    parser.add_argument("--keep", action="store_true", help="leave the copies in build/mutation")
    options = parser.parse_args()
    options.end = time.time() + 60 * options.minutes
    WORK.mkdir(parents=True, exist_ok=True)
    notes = WORK / f"outcomes-{options.group or 'all'}.json"
    options.known = json.loads(notes.read_text()) if options.again and notes.exists() else {}
    results = []
    for group in (EvalGroup(), ModelGroup()):
        if options.group in (None, group.name):
            examine(group, options, results)
    notes.write_text(json.dumps(options.known | {key_of(mutant): outcome for mutant, outcome in results}, indent=0))
    return summarize(results)


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Mutation testing of the library (core/, diag/, provider/).

Each mutant is one small change to one line: a flipped comparison, a swapped
logical operator or boolean, a constant plus one, a removed call statement, or
a negated `if` condition (the same as swapping its branches). The script
applies one mutant at a time, rebuilds, runs the unit suite and restores the
file. A mutant is *killed* when the suite fails, *survived* when it passes, and
*unviable* when it does not compile (not counted in the score).

Which mutants run is fixed by a hash of the file, the operator and the line's
text, not by line numbers, so two trees that differ elsewhere run the same
mutants on the lines they share: scores of two commits compare fairly.

    tests/mutation/mutate.py                 # the default sample, report on stdout
    tests/mutation/mutate.py --list          # which mutants, without running them
    tests/mutation/mutate.py --files core/InstanceRegistry.cpp --sample 1

The build tree (build/mutation, Ninja, Debug) is made on first use. The
source files are restored after every mutant, also on Ctrl-C.
"""
import argparse
import hashlib
import os
import re
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
MUTATED_FOLDERS = ("core", "diag", "provider")
# The dev preset's selection: the demo, the soak and the real CIMOMs are other jobs.
SUITE_EXCLUDES = "demo|stress|interop"

RELATIONAL = {" == ": " != ", " != ": " == ", " < ": " >= ", " > ": " <= ", " <= ": " > ", " >= ": " < "}
LOGICAL = {" && ": " || ", " || ": " && "}
BOOLEAN = {"true": "false", "false": "true"}
INTEGER = re.compile(r"(?<![\w.])(\d+)(?![\w.])")
WORD = re.compile(r"\b(true|false)\b")
CALL_STATEMENT = re.compile(r"^(\s*)([A-Za-z_][\w:]*(?:(?:\.|->)[A-Za-z_]\w*)*\(.*\);)\s*$")
IF_CONDITION = re.compile(r"^(\s*(?:\} else )?if \()(.*)(\) \{)\s*$")


@dataclass
class Mutant:
    path: str
    line: int  # 1-based
    operator: str
    original: str
    mutated: str

    def key(self, occurrence):
        text = f"{self.path}|{self.operator}|{self.original.strip()}|{self.mutated.strip()}|{occurrence}"
        return int(hashlib.sha1(text.encode()).hexdigest()[:12], 16)

    def describe(self):
        return f"{self.path}:{self.line} {self.operator}: {self.original.strip()}  =>  {self.mutated.strip()}"


def code_mask(lines):
    """For each line, the set of column positions that are code (not string, char or comment)."""
    masks, in_block = [], False
    for line in lines:
        code, i, quote = set(), 0, None
        while i < len(line):
            c = line[i]
            if in_block:
                if line.startswith("*/", i):
                    in_block, i = False, i + 2
                    continue
            elif quote:
                if c == "\\":
                    i += 2
                    continue
                if c == quote:
                    quote = None
            elif line.startswith("//", i):
                break
            elif line.startswith("/*", i):
                in_block, i = True, i + 2
                continue
            elif c in "\"'":
                quote = c
            else:
                code.add(i)
            i += 1
        masks.append(code)
    return masks


def is_code(mask, start, length):
    return all(p in mask for p in range(start, start + length))


def line_mutants(path, number, line, mask):
    stripped = line.strip()
    if stripped.startswith("#") or not mask:
        return
    for table, name in ((RELATIONAL, "relational"), (LOGICAL, "logical")):
        for old, new in table.items():
            for m in re.finditer(re.escape(old), line):
                if is_code(mask, m.start(), len(old)):
                    yield Mutant(path, number, name, line, line[: m.start()] + new + line[m.end():])
    for m in WORD.finditer(line):
        if is_code(mask, m.start(), len(m.group(1))):
            yield Mutant(path, number, "boolean", line, line[: m.start()] + BOOLEAN[m.group(1)] + line[m.end():])
    if not re.match(r"\s*(case\b|enum\b|namespace\b|template\b)", line) and "[" not in line:
        for m in INTEGER.finditer(line):
            if is_code(mask, m.start(), len(m.group(1))):
                value = str(int(m.group(1)) + 1)
                yield Mutant(path, number, "constant", line, line[: m.start()] + value + line[m.end():])
    call = CALL_STATEMENT.match(line)
    if call and "=" not in stripped.replace("==", "") and not re.match(r"(return|delete|throw)\b", stripped):
        if is_code(mask, len(call.group(1)), len(stripped) - 1):
            yield Mutant(path, number, "removed-call", line, call.group(1) + "(void)0;  // mutant\n")
    condition = IF_CONDITION.match(line)
    if condition and is_code(mask, len(condition.group(1)), len(condition.group(2))):
        yield Mutant(path, number, "negated-if", line,
                     f"{condition.group(1)}!({condition.group(2)}){condition.group(3)}\n")


def all_mutants(files):
    for path in files:
        lines = (ROOT / path).read_text().splitlines(keepends=True)
        seen = {}
        for number, (line, mask) in enumerate(zip(lines, code_mask(lines)), start=1):
            for mutant in line_mutants(path, number, line, mask):
                ident = (mutant.operator, mutant.original.strip(), mutant.mutated.strip())
                seen[ident] = seen.get(ident, 0) + 1
                yield mutant, seen[ident]


def source_files(patterns):
    if patterns:
        return sorted(patterns)
    return sorted(str(p.relative_to(ROOT)) for folder in MUTATED_FOLDERS
                  for p in (ROOT / folder).rglob("*") if p.suffix in (".cpp", ".h"))


def run(command, log, timeout=None):
    with open(log, "a") as out:
        out.write(f"$ {' '.join(command)}\n")
        out.flush()
        try:
            return subprocess.run(command, cwd=ROOT, stdout=out, stderr=subprocess.STDOUT, timeout=timeout).returncode
        except subprocess.TimeoutExpired:
            return 124


def prepare_build(build, log, jobs):
    if not (build / "CMakeCache.txt").exists():
        # A mutant touches the library only: its tests need not relink.
        options = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"]
        if shutil.which("ccache"):  # restoring a file then compiles from the cache
            options += ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache", "-DCMAKE_C_COMPILER_LAUNCHER=ccache"]
        if run(["cmake", "-S", ".", "-B", str(build), "-G", "Ninja"] + options, log):
            sys.exit(f"configuring {build} failed; see {log}")
    if run(["cmake", "--build", str(build), "-j", str(jobs)], log):
        sys.exit(f"the unmutated tree does not build; see {log}")


def suite_passes(build, log, jobs, timeout):
    return run(["ctest", "--test-dir", str(build), "-LE", SUITE_EXCLUDES, "--stop-on-failure",
                "-j", str(jobs), "--timeout", str(timeout)], log, timeout=timeout * 20) == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--files", nargs="*", help="source files to mutate (default: core/ diag/ provider/)")
    parser.add_argument("--sample", type=int, default=4, help="run one mutant in N (by stable hash; 1 = all)")
    parser.add_argument("--list", action="store_true", help="list the selected mutants and stop")
    parser.add_argument("--build-dir", default="build/mutation")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--timeout", type=int, default=120, help="seconds per test")
    parser.add_argument("--report", help="also write one line per mutant to this file")
    parser.add_argument("--resume", help="take the outcomes of an interrupted run's output instead of rerunning them")
    args = parser.parse_args()
    earlier = {}
    if args.resume:
        for line in Path(args.resume).read_text().splitlines():
            found = re.match(r"(?:\[\d+/\d+\] )?(killed|survived|unviable) +(.*)$", line)
            if found:
                earlier[found.group(2)] = found.group(1)

    selected = [m for m, occurrence in all_mutants(source_files(args.files)) if m.key(occurrence) % args.sample == 0]
    if args.list:
        for mutant in selected:
            print(mutant.describe())
        print(f"{len(selected)} mutants")
        return

    build = ROOT / args.build_dir
    build.mkdir(parents=True, exist_ok=True)
    log = build / "mutation.log"
    prepare_build(build, log, args.jobs)
    if not suite_passes(build, log, args.jobs, args.timeout):
        sys.exit(f"the suite fails without any mutant; see {log}")

    results, report = {"killed": 0, "survived": 0, "unviable": 0}, []
    started = time.time()
    for index, mutant in enumerate(selected, start=1):
        if mutant.describe() in earlier:
            outcome = earlier[mutant.describe()]
            results[outcome] += 1
            report.append(f"{outcome:8} {mutant.describe()}")
            continue
        source = ROOT / mutant.path
        original = source.read_text()
        lines = original.splitlines(keepends=True)
        lines[mutant.line - 1] = mutant.mutated
        try:
            source.write_text("".join(lines))
            if run(["cmake", "--build", str(build), "-j", str(args.jobs)], log):
                outcome = "unviable"
            else:
                outcome = "survived" if suite_passes(build, log, args.jobs, args.timeout) else "killed"
        finally:
            source.write_text(original)
        results[outcome] += 1
        line = f"{outcome:8} {mutant.describe()}"
        report.append(line)
        print(f"[{index}/{len(selected)}] {line}", flush=True)

    run(["cmake", "--build", str(build), "-j", str(args.jobs)], log)  # leave the tree as it was
    counted = results["killed"] + results["survived"]
    score = 100.0 * results["killed"] / counted if counted else 0.0
    summary = (f"mutants: {len(selected)}  killed: {results['killed']}  survived: {results['survived']}  "
               f"unviable: {results['unviable']}  score: {score:.1f}%  ({time.time() - started:.0f} s)")
    print(summary)
    if args.report:
        Path(args.report).write_text("\n".join(report + [summary]) + "\n")


if __name__ == "__main__":
    main()

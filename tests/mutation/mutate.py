#!/usr/bin/env python3
"""Are the tests of the numeric library worth anything? Breaks the library in small ways and looks who notices.

Samples mutants of platform/otdr/core/*.cpp: a statement deleted, a condition turned round, a border moved, an operator
swapped, a constant changed. Each is built in a scratch copy of the tree, with the library and its own tests only, and
counts as killed when a test fails, crashes or runs out of time. Mutants that the compiler refuses are not counted, nor
those of equal.txt.

A mutant's place in the sample follows from the seed and from its own text: a source that changes elsewhere leaves the
rest of the sample as it is.

    tests/mutation/mutate.py [--count 80] [--seed 1] [--only sor] [--scratch DIRECTORY] > told.txt
    tests/mutation/mutate.py --again told.txt     # only those that survived

Fails when fewer than --least percent are killed.
"""

import sys

sys.dont_write_bytecode = True

import argparse  # noqa: E402
import collections  # noqa: E402
import hashlib  # noqa: E402
import os  # noqa: E402
import pathlib  # noqa: E402
import re  # noqa: E402
import resource  # noqa: E402
import shutil  # noqa: E402
import signal  # noqa: E402
import subprocess  # noqa: E402
import tempfile  # noqa: E402

import mutants  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[2]
CORE = "platform/otdr/core"
LIBRARY = "otdr_core"
TESTS = ["otdr_core_sor_test", "otdr_core_numeric_test"]
MOST_MEMORY = 4 << 30
PATIENCE = 8  # times what the tests take unbroken: a mutant that takes longer hangs


def readEqual(path):
    """The lines of equal.txt that name a mutant."""
    lines = path.read_text().splitlines()
    return {line for line in lines if line and not line.startswith(("#", " "))}


def nameOf(mutant, source):
    return f"{pathlib.Path(mutant.file).name}: {mutant.before(source)} => {mutant.after(source)}"


def inOrder(sources, seed):
    """All mutants, as if shuffled, with the kinds taking turns: there are more statements than conditions."""
    kinds = collections.defaultdict(list)
    for file, source in sources.items():
        same = collections.Counter()  # of mutants that read alike
        for mutant in mutants.mutantsOf(file, source):
            name = nameOf(mutant, source)
            place = f"{seed} {same[name]} {name}"
            same[name] += 1
            kinds[mutant.kind].append((hashlib.sha256(place.encode()).digest(), mutant))
    queues = [sorted(kinds[kind], key=lambda entry: entry[0], reverse=True) for kind in sorted(kinds)]
    while any(queues):
        for queue in queues:
            if queue:
                yield queue.pop()[1]


def survivorsIn(path):
    """The mutants that an earlier run told to have survived, by their names."""
    told = path.read_text().splitlines()
    return {name.strip() for line, name in zip(told, told[1:]) if re.match(r"\s*\d+  survived ", line)}


class Workshop:
    """A scratch copy of the tree where mutants are built and tested."""

    def __init__(self, directory, jobs):
        self.tree = pathlib.Path(directory) / "tree"
        self.build = pathlib.Path(directory) / "build"
        self.files = pathlib.Path(directory) / "files"
        self.jobs = str(jobs)
        self.seconds = 300.0
        ignored = shutil.ignore_patterns("build*", ".git", "__pycache__", "fuzz", "docs")
        shutil.copytree(ROOT, self.tree, ignore=ignored)
        self.files.mkdir()
        traces = ROOT.parent / "shared"
        if traces.is_dir():  # where the tests look for trace files, seen from the copy
            (self.tree.parent / "shared").symlink_to(traces)
        # No debug information and no warnings: a mutant may well leave a variable unused.
        subprocess.run(
            ["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build, "-DCMAKE_BUILD_TYPE=Release"]
            + ["-DCMAKE_CXX_FLAGS=-w", "-DWAVEFORM_BENCH=OFF", "-DWAVEFORM_FUZZ=OFF"],
            check=True, stdout=subprocess.DEVNULL)  # fmt: skip

    def make(self, *targets):
        command = ["ninja", "-C", self.build, "-j", self.jobs, *targets]
        return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def test(self, file=""):
        """Who noticed a change of a file: the name of a test, a word for what else went wrong, or nothing."""
        likely = TESTS if pathlib.Path(file).name.startswith("sor") else reversed(TESTS)
        for test in likely:
            noticed = self._run(test)
            if noticed:
                return noticed
        return ""

    def learnTime(self):
        """From now on a run may take so many times the CPU time of this one."""
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        noticed = self.test()
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        taken = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        self.seconds = max(5.0, PATIENCE * taken)
        return noticed

    def _run(self, test):
        def limited():
            resource.setrlimit(resource.RLIMIT_CPU, (int(self.seconds), int(self.seconds) + 1))
            resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        environment = {**os.environ, "GTEST_FAIL_FAST": "1", "GTEST_COLOR": "no", "TMPDIR": str(self.files)}
        try:
            # CPU time is what is limited; the wall clock only stops what waits for ever.
            ran = subprocess.run(
                [self.build / "tests" / test], env=environment, preexec_fn=limited, timeout=20 * self.seconds,
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, errors="replace", text=True)  # fmt: skip
        except subprocess.TimeoutExpired:
            return "waits for ever"
        if ran.returncode == 0:
            return ""
        failed = re.search(r"^\[  FAILED  \] ([^\s,]+)", ran.stdout, re.MULTILINE)
        if failed:
            return failed.group(1)
        started = re.findall(r"^\[ RUN      \] (\S+)", ran.stdout, re.MULTILINE)
        word = "out of time" if ran.returncode in (-9, -24) else "crash"
        return f"{word} in {started[-1] if started else test}"

    def judge(self, mutant, source):
        """(outcome, who noticed) of a mutant; the copy is put right again."""
        file = self.tree / mutant.file
        file.write_text(mutant.apply(source))
        try:
            if self.make(LIBRARY).returncode:
                return "refused", ""
            if self.make(*TESTS).returncode:
                return "killed", "a test does not build"
            noticed = self.test(mutant.file)
            return ("killed", noticed) if noticed else ("survived", "")
        finally:
            file.write_text(source)


def tell(number, outcome, mutant, source, noticed):
    place = f"{pathlib.Path(mutant.file).name}:{mutant.line(source)}"
    print(f"{number:>4}  {outcome:<9} {place:<24} {mutant.kind:<11} {noticed}", flush=True)
    if outcome in ("survived", "equal"):
        print(f"        {nameOf(mutant, source)}", flush=True)


def sample(workshop, sources, options, equal):
    """Judges mutants until `options.count` have been counted; how many had each outcome, by kind."""
    counts = collections.defaultdict(collections.Counter)
    counted = 0
    survivors = survivorsIn(options.again) if options.again else None
    for mutant in inOrder(sources, options.seed):
        if counted == options.count:
            break
        source = sources[mutant.file]
        if survivors is not None and nameOf(mutant, source) not in survivors:
            continue
        if nameOf(mutant, source) in equal:
            outcome, noticed = "equal", ""
        else:
            outcome, noticed = workshop.judge(mutant, source)
        counts[mutant.kind][outcome] += 1
        if outcome in ("killed", "survived"):
            counted += 1
        if outcome != "refused":
            tell(counted, outcome, mutant, source, noticed)
    return counts


def sumUp(counts):
    """Prints the table; the part of the mutants that was killed, in percent."""
    outcomes = ["killed", "survived", "equal", "refused"]
    print(f"\n{'':<12}" + "".join(f"{outcome:>10}" for outcome in outcomes))
    total = collections.Counter()
    for kind in sorted(counts):
        total += counts[kind]
        print(f"{kind:<12}" + "".join(f"{counts[kind][outcome]:>10}" for outcome in outcomes))
    print(f"{'total':<12}" + "".join(f"{total[outcome]:>10}" for outcome in outcomes))
    counted = total["killed"] + total["survived"]
    rate = 100.0 * total["killed"] / counted if counted else 0.0
    print(f"killed: {total['killed']} of {counted}, {rate:.1f} %")
    return rate


def tellStale(sources, equal):
    """An entry of equal.txt that names no mutant any more excuses nothing: its line has changed."""
    names = {nameOf(mutant, source) for file, source in sources.items() for mutant in mutants.mutantsOf(file, source)}
    files = {pathlib.Path(file).name for file in sources}
    for entry in sorted(equal - names):
        if entry.split(":")[0] in files:
            print(f"equal.txt: no such mutant any more\n        {entry}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=80, help="mutants to count")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--again", type=pathlib.Path, help="only those that survived by this output of an earlier run")
    parser.add_argument("--least", type=float, default=90.0, help="percent that must be killed")
    parser.add_argument("--only", default="", help="only files whose names begin so")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--scratch", help="where to put the scratch copy (a temporary directory otherwise)")
    options = parser.parse_args()
    # Ends as by Ctrl-C, so that the scratch copy is removed.
    signal.signal(signal.SIGTERM, signal.default_int_handler)

    with tempfile.TemporaryDirectory(prefix="waveform-mutation-", dir=options.scratch) as directory:
        workshop = Workshop(directory, options.jobs)
        # The copy's sources, so that nobody's typing gets between.
        files = sorted((workshop.tree / CORE).glob(options.only + "*.cpp"))
        sources = {str(file.relative_to(workshop.tree)): file.read_text() for file in files}
        made = workshop.make(LIBRARY, *TESTS)
        if made.returncode:
            sys.exit(f"The sources do not build:\n{made.stdout}")
        noticed = workshop.learnTime()
        if noticed:
            sys.exit(f"The tests fail without a mutant: {noticed}")
        equal = readEqual(pathlib.Path(__file__).with_name("equal.txt"))
        tellStale(sources, equal)
        rate = sumUp(sample(workshop, sources, options, equal))
    return 0 if rate >= options.least else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit("stopped")

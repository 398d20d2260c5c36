"""Tries mutants of product code, and tells which of them no unit test notices."""

import argparse
import concurrent.futures
import dataclasses
import os
import pathlib
import queue
import random
import shutil
import signal
import sys
import time

from mutants import mutants_of
from mutate_tests import FOLDERS, PROGRAMS, Build, Failure, Tests, Worker

EQUIVALENT = "tools/mutate-equivalent.txt"
NOT_COPIED = {".git", "build", "dist", "docs"}
WORKERS = 2
COUNTED = ["noticed", "not noticed", "equivalent", "wrongly listed", "not compiled"]


def files_in(root):
    for folder, folders, files in os.walk(root):
        here = pathlib.Path(folder)
        if here == root:
            folders[:] = [each for each in folders if each not in NOT_COPIED]
        yield from ((here / each).relative_to(root) for each in files)


def copy_tree(project, copy):
    """Makes the copy what the project is. What is the same there keeps its time."""
    copy.mkdir(parents=True, exist_ok=True)
    wanted = set(files_in(project))
    for name in wanted:
        target = copy / name
        if not target.is_file() or target.read_bytes() != (project / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(project / name, target)
    for name in set(files_in(copy)) - wanted:
        (copy / name).unlink()


@dataclasses.dataclass
class Row:
    """A row of the list of equivalent mutants: a change of a line, or all of a kind in one place."""

    number: int
    file: str
    entity: str
    kind: str = ""
    before: str = ""
    after: str = ""
    reason: str = ""

    def is_of(self, mutant):
        if (self.file, self.entity) != (mutant.file, mutant.entity):
            return False
        if self.kind:
            return self.kind == mutant.kind
        return (self.before, self.after) == (mutant.before, mutant.after)


def read_rows(path):
    rows, row = [], None
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("#") or not line.strip():
            row = None
        elif row is None:
            words = line.split(maxsplit=2)
            if len(words) < 2:
                raise Failure(f"{path}:{number}: '{line}' lacks a file or what stands in it.")
            row = Row(number, *words)
            rows.append(row)
        elif line.startswith("  - "):
            row.before = line[4:]
        elif line.startswith("  + "):
            row.after = line[4:]
        else:
            row.reason = f"{row.reason} {line.strip()}".strip()
    for row in rows:
        if not row.reason or bool(row.kind) == bool(row.before):
            raise Failure(f"{path}:{row.number}: the row wants a reason, and a kind or two lines.")
    return rows


def show(mutant, what):
    print(f"{mutant.file}:{mutant.line}: {what}: {mutant.kind} in {mutant.entity}")
    print(f"  - {mutant.before}\n  + {mutant.after}", flush=True)


def judged(mutant, outcome, rows):
    """What the mutant counts as, and shows those that somebody has to do something about."""
    listed = any(row.is_of(mutant) for row in rows)
    if listed and outcome == "noticed":
        outcome = "wrongly listed"
    elif listed and outcome == "not noticed":
        outcome = "equivalent"
    if outcome in ("not noticed", "wrongly listed"):
        show(mutant, outcome)
    return outcome


def try_all(mutants, rows, workers):
    """Tries them, as many at once as there are workers, and gives how many came to which end."""
    free = queue.SimpleQueue()
    for worker in workers:
        free.put(worker)

    def outcome(mutant):
        worker = free.get()
        try:
            return mutant, worker.outcome(mutant)
        finally:
            free.put(worker)

    counts = dict.fromkeys(COUNTED, 0)
    start = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(len(workers)) as pool:
        pending = [pool.submit(outcome, mutant) for mutant in mutants]
        try:
            for done, each in enumerate(concurrent.futures.as_completed(pending), 1):
                counts[judged(*each.result(), rows)] += 1
                if done % 50 == 0 or done == len(pending):
                    took = time.monotonic() - start
                    left = took / done * (len(pending) - done) / 60
                    print(f"{done} of {len(pending)} tried, {took / done:.1f} s each, {left:.0f} min left")
                    sys.stdout.flush()
        except BaseException:
            pool.shutdown(wait=False, cancel_futures=True)
            Tests.end_all()
            raise
    return counts


def choose(options, everything):
    chosen = [each for each in everything if options.file in (None, each.file)]
    if options.sample is None:
        return chosen
    sample = random.Random(options.seed).sample(chosen, min(options.sample, len(chosen)))
    print(f"{len(sample)} of {len(chosen)} mutants, with --seed {options.seed}")
    return sample


def run(options):
    sources = options.folder / "source"
    everything = mutants_of(sources, FOLDERS)
    rows = read_rows(sources / EQUIVALENT)
    unfit = [row for row in rows if not any(row.is_of(each) for each in everything)]
    for row in unfit:
        print(f"{EQUIVALENT}:{row.number}: there is no such mutant in {row.file}")
    chosen = choose(options, everything)
    build = Build(options.folder)
    tests = {}
    for program in PROGRAMS:
        if not build.link(program, {}, options.folder / program):
            raise Failure(f"{program} doesn't link without a mutant.")
        tests[program] = Tests(options.folder / program, options.folder, sources)
    folders = [options.folder / f"worker-{number + 1}" for number in range(WORKERS)]
    counts = try_all(chosen, rows, [Worker(build, tests, folder) for folder in folders])
    print(", ".join(f"{count} {name}" for name, count in counts.items()))
    return 1 if counts["not noticed"] or counts["wrongly listed"] or unfit else 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("task", choices=["copy", "list", "run"])
    parser.add_argument("--project", type=pathlib.Path, required=True)
    parser.add_argument("--folder", type=pathlib.Path, required=True)
    parser.add_argument("--file")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int)
    options = parser.parse_args()
    for ended in (signal.SIGINT, signal.SIGTERM):
        signal.signal(ended, lambda number, _: sys.exit(128 + number))
    if options.task == "run":
        try:
            return run(options)
        except Failure as failure:
            print(f"tools/mutate: {failure}", file=sys.stderr)
            return 1
    if options.task == "copy":
        copy_tree(options.project, options.folder / "source")
    else:
        for each in choose(options, mutants_of(options.project, FOLDERS)):
            show(each, "mutant")
    return 0


if __name__ == "__main__":
    sys.exit(main())

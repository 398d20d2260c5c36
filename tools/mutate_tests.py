"""Builds the product with a mutant in it, quickly, and has the unit tests look at it."""

import json
import os
import pathlib
import re
import resource
import shlex
import shutil
import signal
import subprocess
import threading
import time

FOLDERS = ["plugin", "defaults", "companion", "bridge"]
PROGRAMS = ["unit_tests", "companion_tests"]
SLOW_SUITE = 500  # ms
BYTES = 6 << 30  # a mutant may ask for memory without end


class Failure(Exception):
    """What doesn't even work without a mutant."""


def succeeds(words, folder):
    return subprocess.run(words, cwd=folder, capture_output=True, check=False).returncode == 0


class Build:
    """The copy's build, and the product's sources compiled once more: fast, and without a mutant."""

    def __init__(self, folder):
        self.source = folder / "source"
        self.objects = folder / "objects"
        self.build = self.source / "build/portable"
        # The compiler knows the linker by this name only, and its package gives it another one.
        self.linker = folder / "linker"
        self.linker.mkdir(exist_ok=True)
        (self.linker / "ld.lld").unlink(missing_ok=True)
        (self.linker / "ld.lld").symlink_to(shutil.which("ld.lld-14"))
        self.commands = self._commands()
        self.links = {program: self._link_words(program) for program in PROGRAMS}
        self.readers = {}  # the sources that read a file, by its name
        for name in self.commands:
            self._compile_plain(name)
        self.optimised = {}
        self.lock = threading.Lock()

    def _commands(self):
        """By the name of a product source: its object in the build, and the words that compile it."""
        commands = {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            name = str(pathlib.Path(entry["file"]).relative_to(self.source))
            if name.split("/")[0] in FOLDERS:
                words = shlex.split(entry["command"])
                behind = words.index("-o")
                kept = [each for each in words[:behind] if not re.match(r"-(W|I|O|g)", each)]
                commands[name] = (words[behind + 1], kept)
        return commands

    def _link_words(self, program):
        said = subprocess.run(
            ["ninja", "-t", "commands", program],
            cwd=self.build, capture_output=True, text=True, check=True,
        ).stdout
        command = said.splitlines()[-1].split(" && ")[1]
        return [word for word in shlex.split(command) if word not in ("-o", f"bin/{program}")]

    def compile(self, name, source, target, speed="-O0", extra=()):
        """Compiles a product source, which reads the product's other files where it stands itself."""
        target.parent.mkdir(parents=True, exist_ok=True)
        words = [*self.commands[name][1], "-w", speed, f"-I{source}", f"-I{self.source}", *extra]
        return succeeds([*words, "-o", str(target), "-c", name], source)

    def _compile_plain(self, name):
        depends = self.objects / f"{name}.d"
        if not self.compile(name, self.source, self.plain(name), extra=("-MMD", "-MF", str(depends))):
            raise Failure(f"{name} doesn't compile without a mutant.")
        for word in depends.read_text().replace("\\\n", " ").split()[1:]:
            read = os.path.relpath(self.source / word, self.source)
            self.readers.setdefault(read, []).append(name)

    def plain(self, name):
        return self.objects / f"{name}.o"

    def plain_optimised(self, name):
        with self.lock:
            if name not in self.optimised:
                target = self.objects / f"{name}.fast.o"
                self.compile(name, self.source, target, "-O2")
                self.optimised[name] = target.read_bytes()
            return self.optimised[name]

    def link(self, program, changed, target):
        """Links a program of tests, with these objects for the sources that they are of."""
        names = {its_object: name for name, (its_object, _) in self.commands.items()}
        compiler, *words = self.links[program]
        own = [names[word] for word in words if word in names]
        others = [word for word in words if word not in names]
        # The product's first: where tests have an inline function of a header as well, that one counts.
        objects = [str(changed.get(name, self.plain(name))) for name in own]
        linker = ["-fuse-ld=lld", f"-B{self.linker}"]
        return succeeds([compiler, *linker, *objects, *others, "-o", str(target)], self.build)

    def uses(self, program, names):
        return any(self.commands[name][0] in self.links[program] for name in names)


class Tests:
    """A program of tests: its suites, those first that notice soonest."""

    running = set()  # process groups

    def __init__(self, binary, folder, sources):
        self.sources = sources
        start, before = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
        limits = ["prlimit", f"--as={BYTES}", "--core=0"]
        said = subprocess.run(
            [*limits, "--", binary],
            cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False,
        )
        if said.returncode != 0:
            raise Failure(f"{binary.name} fails without a mutant:\n{said.stdout[-3000:]}")
        used = resource.getrusage(resource.RUSAGE_CHILDREN)
        processor = used.ru_utime + used.ru_stime - before.ru_utime - before.ru_stime
        self.patience = 10 * (time.monotonic() - start) + 30
        self.limits = [*limits, f"--cpu={4 * int(processor) + 4}", "--"]
        self.times = {}
        for suite, took in re.findall(r"^passed ([^.\n]+)\..* \((\d+) ms\)$", said.stdout, re.MULTILINE):
            self.times[suite] = self.times.get(suite, 0) + int(took)

    def _beside(self, file):
        """The suites of the test file that has the unit's name and place."""
        path = self.sources / "tests" / re.sub(r"\.\w+$", "_test.cc", file)
        if not path.is_file():
            return set()
        named = set(re.findall(r"^TEST(?:_[FP])?\((\w+)", path.read_text(encoding="utf-8"), re.MULTILINE))
        return {suite for suite in self.times if suite.split("/")[-1] in named}

    def notice(self, binary, file, folder):
        """Whether a test fails of the program with a mutant of that file; the first one is enough."""
        beside = self._beside(file)
        slow = {suite for suite, took in self.times.items() if took > SLOW_SUITE} - beside
        stages = [beside, set(self.times) - beside - slow, slow]
        return any(stage and not self._pass(binary, stage, folder) for stage in stages)

    def _pass(self, binary, suites, folder):
        names = ":".join(f"{suite}.*" for suite in sorted(suites))
        started = subprocess.Popen(
            [*self.limits, binary, f"--gtest_filter={names}", "--gtest_fail_fast"],
            cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True, errors="replace", start_new_session=True,
        )
        self.running.add(started.pid)
        watch = threading.Timer(self.patience, end_group, [started.pid])
        watch.start()
        try:
            if any(line.startswith("failed ") for line in started.stdout):
                return False
            return started.wait() == 0
        finally:
            watch.cancel()
            end_group(started.pid)
            started.stdout.close()
            started.wait()
            self.running.discard(started.pid)

    @classmethod
    def end_all(cls):
        for group in list(cls.running):
            end_group(group)


def end_group(leader):
    try:
        os.killpg(leader, signal.SIGKILL)
    except ProcessLookupError:
        pass


class Worker:
    """Tries one mutant after the other, in a folder of its own."""

    def __init__(self, build, tests, folder):
        self.build = build
        self.tests = tests
        self.folder = folder
        shutil.rmtree(folder, ignore_errors=True)
        for each in FOLDERS:
            shutil.copytree(build.source / each, folder / "source" / each)

    def outcome(self, mutant):
        path = self.folder / "source" / mutant.file
        plain = path.read_text(encoding="utf-8")
        path.write_text(mutant.applied_to(plain), encoding="utf-8")
        try:
            return self._outcome(mutant.file)
        finally:
            path.write_text(plain, encoding="utf-8")

    def _outcome(self, file):
        changed = {}
        for name in self.build.readers.get(file, []):
            target = self.folder / "objects" / f"{name}.o"
            if not self.build.compile(name, self.folder / "source", target):
                return "not compiled"
            if target.read_bytes() != self.build.plain(name).read_bytes():
                changed[name] = target
        for program in PROGRAMS:
            if not self.build.uses(program, changed):
                continue
            binary = self.folder / program
            if not self.build.link(program, changed, binary):
                return "not compiled"
            if self.tests[program].notice(binary, file, self.folder):
                return "noticed"
        return "not noticed" if self._differs(changed) else "equivalent"

    def _differs(self, changed):
        """Whether the mutant is left where the compiler optimises."""
        for name in changed:
            target = self.folder / "objects" / f"{name}.fast.o"
            self.build.compile(name, self.folder / "source", target, "-O2")
            if target.read_bytes() != self.build.plain_optimised(name):
                return True
        return False

# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the tests of a room: without a mutant, counting what each of their functions reaches, and
with one, only those functions that come by it."""
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import threading
import time
from dataclasses import dataclass, field
from pathlib import Path

# A mutant may loop, and fill memory or a disk while it does.
_MEMORY = 4 << 30
_FILE_SIZE = 1 << 30
_SHORTEST_LIMIT = 10
_TIMES_NORMAL = 5
# Seconds from which on a function of a test is only asked about what the others let pass.
_QUICK = 8
# Tests of a room that stand in another one's folder, as they need more than that room.
_ELSEWHERE = {"common": ["shell.preferences"], "link": ["acquisition.late_answer"],
              "measurement": ["realtime.spoilt_byte", "trend.trend"],
              "realtime": ["acquisition.acquisition", "acquisition.plan_run", "report.report"],
              "platform": ["common.files", "db.create", "link.port_diagnosis", "link.real_port",
                           "measurement.measurement_log", "olddb.reader", "shell.display",
                           "unattended.options"]}


@dataclass
class Function:
    """A function of a test program: which mutants it comes by, how many seconds it takes."""
    name: str
    reached: frozenset
    seconds: float


@dataclass
class Test:
    """A test program: its name, its file, its environment, and what `measure` found out about it.
    `real_time`: it talks to another process by the clock, and can fail on a busy machine."""
    name: str
    program: Path
    environment: dict
    real_time: bool = False
    functions: list = field(default_factory=list)

    def coming_by(self, number, slow):
        """Its functions that come by this mutant, the quickest first: those that take their time,
        or the others."""
        found = [f for f in self.functions
                 if number in f.reached and (f.seconds > _QUICK) == slow]
        return sorted(found, key=lambda f: f.seconds)


def tests_of(build_folder, room):
    """The test programs of a room, as CTest knows them."""
    names = "|".join(rf"{re.escape(name)}$" for name in _ELSEWHERE.get(room, []))
    wanted = rf"^({room}\.{'|' + names if names else ''})"
    listed = subprocess.run(["ctest", "--show-only=json-v1", "-R", wanted],
                            cwd=build_folder, check=True, capture_output=True, text=True).stdout
    tests = []
    for each in json.loads(listed)["tests"]:
        properties = {p["name"]: p["value"] for p in each["properties"]}
        # CTest starts it through a program that makes it stand back or gives it a second try.
        program = build_folder / f"test_{each['name'].replace('.', '_')}"
        environment = dict(line.split("=", 1) for line in properties.get("ENVIRONMENT", []))
        tests.append(Test(each["name"], program, environment,
                          "second-try" in each.get("command", [""])[0]))
    return tests


def run(test, functions=(), number=0, reached=None, limit=None):
    """Runs these functions of a test, or all, with a mutant; tells "passed", "failed" or "hung".
    `reached` is a file that takes a mark for each mutant that is come by. It ends at the first
    failure."""
    scratch = tempfile.mkdtemp(prefix="m47-mutant-")
    os.chmod(scratch, 0o1777)  # Some tests start a program as an ordinary user.
    environment = {**os.environ, **test.environment, "M47_MUTANT": str(number), "TMPDIR": scratch,
                   "XDG_CONFIG_HOME": f"{scratch}/settings", "HOME": scratch}
    if reached:
        environment["M47_MUTANTS_REACHED"] = str(reached)
    process = subprocess.Popen(
        [str(test.program), "-nocrashhandler", *functions], cwd=scratch, env=environment,
        stdin=subprocess.DEVNULL, text=True, errors="replace", stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=_bound)
    hung = threading.Event()
    watch = threading.Timer(limit or 900, lambda: (hung.set(), _end(process)))
    watch.start()
    try:
        failed = any(line.startswith("FAIL!") for line in process.stdout)
        if failed:
            _end(process)
        status = process.wait()
    finally:
        watch.cancel()
        _end(process)
        process.stdout.close()
        shutil.rmtree(scratch, ignore_errors=True)
    if hung.is_set() and not failed:
        return "hung"
    return "failed" if failed or status != 0 else "passed"


def measure(test, mutants):
    """Runs each function of the test by itself, without a mutant; notes its time and which of the
    numbers up to `mutants` it comes by. Tells whether all passed."""
    passed = True
    test.functions = []
    for name in _functions_of(test):
        with tempfile.NamedTemporaryFile() as marks:
            marks.truncate(mutants + 1)
            begin = time.monotonic()
            passed = run(test, [name], 0, marks.name) == "passed" and passed
            seconds = time.monotonic() - begin
            marked = Path(marks.name).read_bytes()
        reached = frozenset(at for at, mark in enumerate(marked) if mark)
        test.functions.append(Function(name, reached, seconds))
    return passed


def _functions_of(test):
    environment = {**os.environ, **test.environment}
    listed = subprocess.run([str(test.program), "-functions"], env=environment, check=True,
                            stdin=subprocess.DEVNULL, capture_output=True, text=True).stdout
    return [line.removesuffix("()") for line in listed.split("\n") if line.endswith("()")]


def is_reached(number, tests):
    return any(number in f.reached for test in tests for f in test.functions)


def verdict(number, tests, slow):
    """Which test kills this mutant and how ("failed", "hung"), by its quick functions or by its
    slow ones; None when all of them pass."""
    trials = [(test, test.coming_by(number, slow)) for test in tests]
    for test, functions in sorted(trials, key=lambda each: _seconds(each[1])):
        result = _tried(test, functions, number)
        # What the clock of a busy machine has done is not done twice.
        if result != "passed" and test.real_time:
            result = _tried(test, functions, number)
        if result != "passed":
            return test.name, result
    return None


def _seconds(functions):
    return sum(f.seconds for f in functions)


def _tried(test, functions, number):
    if not functions:
        return "passed"
    limit = _SHORTEST_LIMIT + _TIMES_NORMAL * _seconds(functions)
    return run(test, [f.name for f in functions], number, limit=limit)


def _bound():
    resource.setrlimit(resource.RLIMIT_AS, (_MEMORY, _MEMORY))
    # A test sets a lower limit for a while and takes it back.
    resource.setrlimit(resource.RLIMIT_FSIZE, (_FILE_SIZE, resource.RLIM_INFINITY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def _end(process):
    """The program and what it started; its number stays taken while that runs."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass

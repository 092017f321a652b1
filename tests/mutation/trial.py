# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the tests of a room: without a mutant, counting what they reach, and with one."""
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
from dataclasses import dataclass
from pathlib import Path

# A mutant may loop, and fill memory or a disk while it does.
_MEMORY = 4 << 30
_FILE_SIZE = 1 << 30
_SHORTEST_LIMIT = 10
_TIMES_NORMAL = 5
# Tests of a room that stand in another one's folder, as they need more than that room.
_ELSEWHERE = {"common": ["shell.preferences"], "link": ["realtime.late_answer"]}


@dataclass
class Test:
    """A test program: its name, its command, its environment; how long it normally takes."""
    name: str
    command: list
    environment: dict
    seconds: float = 0
    reached: frozenset = frozenset()

    @property
    def limit(self):
        return _SHORTEST_LIMIT + _TIMES_NORMAL * self.seconds


def tests_of(build_folder, room):
    """The test programs of a room, as CTest knows them."""
    names = "|".join(rf"{re.escape(name)}$" for name in _ELSEWHERE.get(room, []))
    wanted = rf"^({room}\.{'|' + names if names else ''})"
    listed = subprocess.run(["ctest", "--show-only=json-v1", "-R", wanted],
                            cwd=build_folder, check=True, capture_output=True, text=True).stdout
    tests = []
    for each in json.loads(listed)["tests"]:
        properties = {p["name"]: p["value"] for p in each["properties"]}
        # A target that is not built yet has no command.
        command = each.get("command") or [str(build_folder / f"test_{each['name'].replace('.', '_')}")]
        environment = dict(line.split("=", 1) for line in properties.get("ENVIRONMENT", []))
        tests.append(Test(each["name"], command, environment))
    return tests


def target_of(test):
    return Path(test.command[0]).name


def run(test, number=0, reached=None, limit=None):
    """Runs a test with a mutant; tells "passed", "failed" or "hung". `reached` is a file that
    takes a mark for each mutant that is come by. It ends at the first failure."""
    scratch = tempfile.mkdtemp(prefix="m47-mutant-")
    os.chmod(scratch, 0o1777)  # Some tests start a program as an ordinary user.
    environment = {**os.environ, **test.environment, "M47_MUTANT": str(number), "TMPDIR": scratch,
                   "XDG_CONFIG_HOME": f"{scratch}/settings", "HOME": scratch}
    if reached:
        environment["M47_MUTANTS_REACHED"] = str(reached)
    process = subprocess.Popen(
        [*test.command, "-nocrashhandler"], cwd=scratch, env=environment, stdin=subprocess.DEVNULL, text=True,
        errors="replace", stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        start_new_session=True, preexec_fn=_bound)
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
    """Runs the test without a mutant; notes its time and which of the numbers up to `mutants` it
    comes by. Tells whether it passed."""
    with tempfile.NamedTemporaryFile() as marks:
        marks.truncate(mutants + 1)
        begin = time.monotonic()
        passed = run(test, 0, marks.name) == "passed"
        test.seconds = time.monotonic() - begin
        marked = Path(marks.name).read_bytes()
    test.reached = frozenset(at for at, mark in enumerate(marked) if mark)
    return passed


def verdict(number, tests):
    """Which test kills this mutant and how ("failed", "hung"); None when all of them pass."""
    for test in sorted((t for t in tests if number in t.reached), key=lambda t: t.seconds):
        result = run(test, number, limit=test.limit)
        if result != "passed":
            return test.name, result
    return None


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

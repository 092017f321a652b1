# SPDX-License-Identifier: GPL-3.0-or-later
"""Simulated meters, a probe at each, and real engines on loopback, which all end with their maker."""
import ctypes
import pathlib
import shutil
import signal
import socket
import sqlite3
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

ROOT = pathlib.Path(__file__).resolve().parent.parent
PACKAGES = ["packaging/packages-build.txt", "packaging/packages-fleet.txt"]
PR_SET_PDEATHSIG = 1
DATABASE = "VKDM47_03.mdb"
PLAN = "ROOF"
# Frequency and symbol rate: a digital program, and one measured by its level.
PROGRAMS = ((1127, "27500"), (1034, None))
# Of an Engine, which knows its address.
LISTENING = ("-httpListenAddr={address}", "-memory.allowedBytes=200MB")


class Failure(Exception):
    """What went wrong, in words for who started it."""


def build():
    """Installs what is missing and builds the programs."""
    subprocess.run([ROOT / "packaging/install-packages", *PACKAGES], cwd=ROOT, check=True)
    subprocess.run([ROOT / "cmake/configure", "release"], cwd=ROOT, check=True)
    subprocess.run(["cmake", "--build", "--preset", "release", "--target", "m47-probe",
                    "m47-meter", "publish_http"], cwd=ROOT, check=True)


def end_by_signals():
    """Has SIGTERM and SIGHUP leave by the same way as Ctrl+C."""
    def leave(number, _frame):
        raise SystemExit(128 + number)
    signal.signal(signal.SIGTERM, leave)
    signal.signal(signal.SIGHUP, leave)


def free_port():
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        return taken.getsockname()[1]


def get(address, seconds=10):
    """What stands at `address`; None where nobody answers."""
    try:
        with urllib.request.urlopen(address, timeout=seconds) as answer:
            return answer.read().decode()
    except (urllib.error.URLError, OSError):
        return None


def _dies_with_its_maker():
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)


class Engine:
    """A program with an HTTP server on a port of its own."""

    def __init__(self, stand, name, command, health="/health"):
        self.stand, self.name, self.port = stand, name, free_port()
        self.command = [part.format(address=f"127.0.0.1:{self.port}") for part in command]
        self.health, self.process = health, None

    def start(self):
        self.process = self.stand.child(self.name, self.command)
        deadline = time.monotonic() + 20
        while not get(self.address(self.health), 1):
            if self.process.poll() is not None or time.monotonic() > deadline:
                raise Failure(f"{self.name} does not start, see {self.stand.folder}")
            time.sleep(0.1)

    def kill(self):
        """As a machine that fails: nothing is written any more."""
        self.stand.lose(self.process)

    def address(self, path):
        return f"http://127.0.0.1:{self.port}{path}"


class Stand:
    """A folder and what runs in it. Leaving it ends all that it started, whatever happened."""

    def __init__(self, programs, folder=None):
        self.programs = pathlib.Path(programs)
        self.kept = folder is not None
        self.folder = pathlib.Path(folder or tempfile.mkdtemp(prefix="m47-fleet-"))
        self.children, self.probes, self.meters = [], [], []

    def __enter__(self):
        return self

    def __exit__(self, kind, _fault, _trace):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, signal.SIG_IGN)
        self.end_probes()
        self.end(self.children)
        if not self.kept and kind is not Failure:
            shutil.rmtree(self.folder, ignore_errors=True)

    def child(self, name, command):
        """Starts `command`; what it says goes to NAME.out and NAME.err in the folder."""
        with open(self.folder / f"{name}.out", "ab") as out, \
                open(self.folder / f"{name}.err", "ab") as err:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                                       start_new_session=True, preexec_fn=_dies_with_its_maker)
        process.m47_name = name
        self.children.append(process)
        return process

    def lose(self, process):
        process.kill()
        process.wait()
        self.children.remove(process)

    def end(self, processes, seconds=15):
        """Asks all to end; one that does not is asked again, which cuts its exchange, then killed."""
        deadline = time.monotonic() + seconds
        for process in processes:
            process.terminate()
        for share in (0.8, 1):
            for process in processes:
                left = deadline - (1 - share) * seconds - time.monotonic()
                try:
                    process.wait(max(left, 0.01))
                except subprocess.TimeoutExpired:
                    process.terminate() if share < 1 else process.kill()
        for process in list(processes):
            process.wait()
            if process in self.children:
                self.children.remove(process)

    def end_probes(self):
        self.end(self.probes)
        self.probes = []

    def fallen(self):
        """The name of a child that has ended by itself, or None."""
        return next((c.m47_name for c in self.children if c.poll() is not None), None)

    def store(self, name="store"):
        return Engine(self, name, ["victoria-metrics", f"-storageDataPath={self.folder / name}",
                                   "-dedup.minScrapeInterval=1ms", "-retentionPeriod=1",
                                   "-search.latencyOffset=1s", *LISTENING])

    def agent(self, stores):
        """Gives each of `stores` all that it gets, and keeps for one what it does not take."""
        command = ["vmagent", *LISTENING, f"-remoteWrite.tmpDataPath={self.folder / 'agent'}"]
        command += [f"-remoteWrite.url={store.address('/api/v1/write')}"
                    for store in stores]
        return Engine(self, "agent", command)

    def pages(self):
        """Prometheus, which has pages where an engine is packaged without; it takes rows too."""
        settings = self.folder / "prometheus.yml"
        settings.write_text("global: {evaluation_interval: 10s}\n"
                            f"rule_files: ['{ROOT / 'fleet/alerts.yml'}']\n"
                            "storage: {tsdb: {out_of_order_time_window: 30m}}\n")
        return Engine(self, "pages", ["prometheus", f"--config.file={settings}",
                                      f"--storage.tsdb.path={self.folder / 'pages'}",
                                      "--web.enable-remote-write-receiver",
                                      "--web.listen-address={address}"], "/-/healthy")

    def make_plan(self):
        """The database with the plan that all probes measure."""
        made = subprocess.run([self.programs / "m47-probe", "--directory", self.folder,
                               "--create-database", "--port", "1=/dev/no-such-meter",
                               "--on-port", "1"], capture_output=True, text=True, check=False)
        if not (self.folder / DATABASE).exists():
            raise Failure("m47-probe makes no database: " + made.stderr)
        with sqlite3.connect(self.folder / DATABASE) as database:
            database.execute("INSERT INTO gruppo (nome) VALUES (?)", [PLAN])
            database.execute("INSERT INTO configurazione (nome, loc_osc1) VALUES (?, 9750)", [PLAN])
            for k, (frequency, rate) in enumerate(PROGRAMS):
                database.execute(
                    "INSERT INTO programmi (nome, pg_num, frequenza, loc_osc, loc_osc0, sat_ad,"
                    " qpsk_symbolrate, lnb_volt, K22, monitor_state, lev_min, lev_max)"
                    " VALUES (?, ?, ?, 1, 0, ?, ?, 2, 1, 1, '40', '90')",
                    [PLAN, f"{k:03}", frequency, 1 if rate else 0, rate])
        database.close()

    def meter(self, name, number):
        """A simulated meter, each a little different from the next; its device."""
        device = self.folder / f"{name}.device"
        self.meters.append(self.child(f"{name}.meter", [
            self.programs / "m47-meter", "--link", device, "--seed", str(number),
            "--fade", str(number % 5)]))
        deadline = time.monotonic() + 10
        while not device.exists():
            if time.monotonic() > deadline:
                raise Failure("m47-meter makes no device")
            time.sleep(0.02)
        return device

    def probe(self, name, site, device, engine, every):
        """A probe of the plan, each in a folder of its own."""
        folder = self.folder / name
        folder.mkdir()
        shutil.copy(self.folder / DATABASE, folder)
        (folder / "probe.conf").write_text(
            f"port = 1={device}\non-port = 1\nplan = {PLAN}\npasses = 0\nevery = {every}\n"
            f"full-tune\nreconnect\nalarm = level\nlog = rows.log\n"
            f"publish = {engine.address('/write')}\npublish-site = {site}\n"
            f"publish-meter = {name}\n")
        self.probes.append(self.child(f"{name}.probe", [
            self.programs / "m47-probe", "--config", folder / "probe.conf",
            "--directory", folder]))

    def rows_logged(self, name):
        log = self.folder / name / "rows.log"
        return log.read_bytes().splitlines() if log.exists() else []

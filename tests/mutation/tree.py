# SPDX-License-Identifier: GPL-3.0-or-later
"""The copy of the project that holds the mutants: made, mutated and built."""
import json
import os
import re
import shlex
import shutil
import subprocess
from pathlib import Path

from places import places_in
from schemata import write

PRESET = "mutants"
# A compiler cache makes paths relative to the folder of the build.
_FAULT = re.compile(r"^((?:/|\.\./)[^:\n]+):(\d+):(\d+): (fatal error|error|note):", re.M)


class BuildFailed(Exception):
    """A build that fails for another reason than a mutant."""


def rooms_of(project):
    """What can be mutated: each room's name and the folder of its rules; a room without screens is
    such a folder itself. Shell, probe and unattended run have none."""
    rooms = {}
    for room in sorted(Path(project, "src").iterdir()):
        folder = room / "rules" if (room / "rules").is_dir() else room
        if room.name not in ("shell", "unattended", "probe") and any(folder.rglob("*.cpp")):
            rooms[room.name] = str(folder.relative_to(project))
    return rooms


class Tree:
    """`project` is the folder of the project, `place` where the copy is to lie."""

    def __init__(self, project, place):
        self._project = Path(project)
        self._copy = Path(place)
        self.rooms = rooms_of(project)
        self._written = {}

    @property
    def build_folder(self):
        return self._copy / "build" / PRESET

    def refresh(self):
        """Brings the copy to the state of the project, without mutants."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=self._project, check=True, capture_output=True, text=True).stdout
        names = {name for name in listed.split("\0")
                 if name and (self._project / name).is_file()}
        for name in names:
            self._bring(name, (self._project / name).read_bytes())
            shutil.copymode(self._project / name, self._copy / name)
        for folder in self._copy.iterdir():
            self._remove_others(folder, names)

    def configure(self):
        _run(["cmake", "--preset", PRESET, "-Wno-dev"], self._copy)

    def places(self, rooms):
        """All places of these rooms, by room. The copy must be configured and without mutants."""
        commands = json.loads((self.build_folder / "compile_commands.json").read_text())
        result = {}
        for room in rooms:
            folder = self.rooms[room]
            units = [c for c in commands if f"/{PRESET}/{folder}/" in c["file"]
                     and "/unity_" in c["file"]]
            if not units:
                raise BuildFailed(f"{folder} is not compiled as one")
            found = {}
            for unit in units:
                here, faults = places_in(unit["file"], _arguments(unit),
                                         lambda path: self._name_in(path, folder))
                if faults:
                    raise BuildFailed(f"{unit['file']}: {faults[0]}")
                found.update({(p.path, p.start, p.end, p.kind): p for p in here})
            result[room] = [found[key] for key in sorted(found)]
        return result

    def text(self, name):
        """The text of a source without mutants, one character a byte."""
        return (self._project / name).read_text(encoding="latin-1")

    def put_in(self, mutants):
        """Writes the sources with these mutants; all others are as in the project."""
        by_file = {}
        for mutant in mutants:
            by_file.setdefault(mutant.place.path, []).append(mutant)
        for name in set(self._written) - set(by_file):
            self._bring(name, (self._project / name).read_bytes())
        self._written = {name: write(self.text(name), of_file)
                         for name, of_file in by_file.items()}
        for name, written in self._written.items():
            self._bring(name, written.text.encode("latin-1"))

    def build(self, targets, jobs):
        """Builds; returns the numbers of the mutants that do not compile, empty when all is built."""
        result = subprocess.run(
            ["cmake", "--build", "--preset", PRESET, "-j", str(jobs), "--target", *targets, "--",
             "-k", "0"],
            cwd=self._copy, capture_output=True, text=True, errors="replace")
        if result.returncode == 0:
            return set()
        broken = self._broken_in(result.stdout)
        if not broken:
            raise BuildFailed(result.stdout[-4000:] + result.stderr[-1000:])
        return broken

    def _remove_others(self, folder, names):
        """What the project has no more; only the build's own folder has other files."""
        for path in folder.rglob("*") if folder.name != "build" else ():
            if path.is_file() and str(path.relative_to(self._copy)) not in names:
                path.unlink()

    def _bring(self, name, content):
        path = self._copy / name
        if path.is_file() and path.read_bytes() == content:
            return
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)

    def _name_in(self, path, folder):
        prefix = f"{self._copy}/"
        name = os.path.normpath(path)
        inside = name.startswith(prefix + folder + "/")
        return name.removeprefix(prefix) if inside else None

    def _broken_in(self, output):
        """Each error, or one of the notes that explain it, stands in a mutant."""
        broken, settled = set(), True
        for path, line, column, kind in _FAULT.findall(output):
            if kind != "note":
                settled = False
            if settled:
                continue
            owners = self._owners(path, int(line), int(column))
            broken.update(owners)
            settled = bool(owners)
        return broken

    def _owners(self, path, line, column):
        whole = os.path.normpath(self.build_folder / path)
        written = self._written.get(whole.removeprefix(f"{self._copy}/"))
        if written is None:
            return ()
        lines = written.text.split("\n")
        return written.owners_at(sum(len(each) + 1 for each in lines[:line - 1]) + column - 1)


def _arguments(command):
    """What the compiler is told about a source, without what is of no concern to the parser."""
    words = shlex.split(command["command"])
    at = words.index("-c") if "-c" in words else len(words)
    kept, skipped = [], 0
    for word in words[1:at]:
        if skipped:
            skipped -= 1
        elif word == "-o":
            skipped = 1
        elif word.startswith("-") and word != "-fpch-preprocess":
            kept.append(word)
        elif kept and kept[-1] in ("-isystem", "-include", "-I", "-D"):
            kept.append(word)
    return kept


def _run(command, folder):
    result = subprocess.run(command, cwd=folder, capture_output=True, text=True)
    if result.returncode != 0:
        raise BuildFailed(result.stdout[-2000:] + result.stderr[-2000:])

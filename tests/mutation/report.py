# SPDX-License-Identifier: GPL-3.0-or-later
"""Keeps what became of each mutant, so that a run that was ended can go on."""
import collections
import threading


class Report:
    """What became of each mutant: a line in report.tsv as soon as it is known."""

    def __init__(self, tree, mutants, room_of, folder):
        self.mutants = mutants
        self.room_of = room_of
        self._told = {m.number: self._wording(tree, m) for m in mutants}
        self._folder = folder
        self._lock = threading.Lock()
        self._rows = {}

    @staticmethod
    def _wording(tree, mutant):
        text = tree.text(mutant.place.path)
        return mutant.told(text, text.count("\n", 0, mutant.place.start) + 1)

    @property
    def _file(self):
        return self._folder / "report.tsv"

    def begin(self, go_on, again=False):
        """Takes over what an earlier run said of the same mutants, if wanted, `again` only of those
        that were killed; `left` has no more of them."""
        kept = self._file.read_text().splitlines() if go_on and self._file.exists() else []
        for row in (line.split("\t") for line in kept):
            if len(row) == 5 and self._told.get(int(row[0])) == row[4]:
                self._rows[int(row[0])] = row
        if again:
            self._rows = {number: row for number, row in self._rows.items() if row[3]}
        self._folder.mkdir(parents=True, exist_ok=True)
        self._file.write_text("".join("\t".join(row) + "\n" for row in self._rows.values()))

    @property
    def left(self):
        return [m for m in self.mutants if m.number not in self._rows]

    def result(self, number):
        return self._rows[number][2]

    def of(self, result):
        """Those of which this is known so far."""
        return [m for m in self.mutants if self.result(m.number) == result]

    def note(self, number, result, test=""):
        """The last line of a number counts."""
        row = [str(number), self.room_of[number], result, test, self._told[number]]
        with self._lock, self._file.open("a") as file:
            self._rows[number] = row
            file.write("\t".join(row) + "\n")
        print(f"{number} {result} {test}".rstrip() + f": {row[4]}", flush=True)

    def write_survivors(self):
        rows = [self._rows[m.number] for m in self.mutants]
        (self._folder / "survivors.txt").write_text(
            "".join(f"{row[0]} {row[2]}: {row[4]}\n" for row in rows if not row[3]))

    def show(self, title, numbers):
        """One line; returns the share that was killed, in percent."""
        count = collections.Counter(self.result(n) for n in numbers)
        killed = count["killed"] + count["hung"]
        score = 100 * killed / len(numbers)
        print(f"{title:10} {len(numbers):5} mutants, {killed:5} killed ({count['hung']} by their "
              f"time), {count['survived']} survived, {count['not reached']} not reached: "
              f"{score:.1f} %")
        return score

    def summary(self):
        """A line for each room and one for all; returns the share of all."""
        for room in sorted(set(self.room_of[m.number] for m in self.mutants)):
            self.show(room, [m.number for m in self.mutants if self.room_of[m.number] == room])
        return self.show("all", [m.number for m in self.mutants])

# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes sources in which every mutant stands beside its original, switched by its number."""
import re
from dataclasses import dataclass, field


@dataclass(frozen=True)
class Place:
    """An expression that can be mutated.

    `start` and `end` are offsets in the file, `parts` the ranges that a wording names: {0}, {1}, …
    `wordings` holds what stands for each mutant, `original` what stands for none of them.
    """
    path: str
    start: int
    end: int
    kind: str
    parts: tuple
    wordings: tuple
    original: str = "{0}"


@dataclass(frozen=True)
class Mutant:
    """One way to change the program; `number` counts from 1."""
    number: int
    place: Place
    wording: str

    def told(self, text, line):
        """How a report names it, by the `text` of its file."""
        def shown(wording):
            filled = _filled(wording, lambda part: text[slice(*self.place.parts[part])])
            return " ".join(filled.split())
        whole = " ".join(text[self.place.start:self.place.end].split())
        return f"{self.place.path}:{line}: {self.place.kind}: {whole}  ->  {shown(self.wording)}"


def _filled(wording, part_text):
    pieces = re.split(r"\{(\d)\}", wording)
    return "".join(part_text(int(p)) if at % 2 else p for at, p in enumerate(pieces))


@dataclass
class Written:
    """A text and which mutants own which of its ranges, outer ranges first."""
    text: str = ""
    owned: list = field(default_factory=list)

    def add(self, other):
        shift = len(self.text)
        self.owned += [(a + shift, b + shift, numbers) for a, b, numbers in other.owned]
        self.text += other.text

    def owners_at(self, offset):
        """The numbers of the innermost place that holds `offset`; empty when there is none."""
        holding = [(b - a, numbers) for a, b, numbers in self.owned if a <= offset < b]
        return min(holding, key=lambda each: each[0])[1] if holding else ()


# Of two places with the same range, the one whose wording goes around the other comes first.
_OUTER_FIRST = ("call left out", "return inverted", "condition negated")


def _rank(place):
    return _OUTER_FIRST.index(place.kind) if place.kind in _OUTER_FIRST else len(_OUTER_FIRST)


def write(text, mutants):
    """The `text` of a file with the `mutants` of that file in it."""
    by_place = {}
    for mutant in mutants:
        by_place.setdefault(mutant.place, []).append(mutant)
    order = sorted(by_place, key=lambda p: (p.start, -p.end, _rank(p)))
    return _write_range(text, 0, len(text), [(p, by_place[p]) for p in order])


def _write_range(text, start, end, places):
    written = Written()
    at = start
    while places:
        place, mutants = places[0]
        count = 1
        while count < len(places) and places[count][0].end <= place.end:
            count += 1
        written.add(Written(text[at:place.start]))
        written.add(_write_place(text, place, mutants, places[1:count]))
        at, places = place.end, places[count:]
    written.add(Written(text[at:end]))
    return written


def _write_place(text, place, mutants, inner):
    def wording(pattern):
        result = Written()
        for at, piece in enumerate(re.split(r"\{(\d)\}", pattern)):
            if at % 2 == 0:
                result.add(Written(piece))
                continue
            start, end = place.parts[int(piece)]
            within = [each for each in inner if start <= each[0].start and each[0].end <= end]
            result.add(_write_range(text, start, end, within))
        return result

    result = Written("(")
    for mutant in mutants:
        result.add(Written(f"m47_mutant({mutant.number}) ? "))
        result.add(wording(mutant.wording))
        result.add(Written(" : "))
    result.add(wording(place.original))
    result.add(Written(")"))
    result.owned.insert(0, (0, len(result.text), tuple(m.number for m in mutants)))
    return result

# SPDX-License-Identifier: MIT
"""Goals, what was measured against them, and the table of both."""

from dataclasses import dataclass


@dataclass
class Row:
    name: str
    value: float | None  # None: could not be measured
    limit: float | None = None  # None: for information only
    at_least: bool = False  # else: at most
    unit: str = "×"
    detail: str = ""

    @property
    def met(self):
        if self.limit is None:
            return True
        if self.value is None:
            return False
        return self.value >= self.limit if self.at_least else self.value <= self.limit

    def cells(self):
        value = "-" if self.value is None else f"{self.value:.3g} {self.unit}"
        goal = "" if self.limit is None else f"{'≥' if self.at_least else '≤'} {self.limit:g} {self.unit}"
        verdict = "" if self.limit is None else "pass" if self.met else "MISSED"
        return self.name, value, goal, verdict, self.detail


def answer(name, expected, found):
    """A row that is met when a program found what it should."""
    same = expected == found
    detail = str(found) if same else f"expected {expected}, found {found}"
    return Row(f"answer: {name}", 1.0 if same else 0.0, 1.0, at_least=True, unit="", detail=detail)


def print_table(title, rows):
    cells = [("what", "measured", "goal", "", "")] + [row.cells() for row in rows]
    widths = [max(len(row[column]) for row in cells) for column in range(4)]
    print(f"\n{title}")
    for row in cells:
        print("  " + "  ".join(text.ljust(width) for text, width in zip(row, widths)) + f"  {row[4]}".rstrip())

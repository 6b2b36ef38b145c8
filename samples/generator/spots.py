"""The file of spot values, by which a test can tell that the library reads cells right."""

from __future__ import annotations

import csv
import io

from generator.expected import ExpectedValues
from generator.model import Family

HEADING = ("family-path", "row-id", "column-id", "language", "value", "source-of-number")


def spot_values(families: list[Family], materials: dict[str, str]) -> str:
    """The text of the file: a heading, then a line for each checked cell."""
    output = io.StringIO()
    writer = csv.writer(output, lineterminator="\n")
    writer.writerow(HEADING)
    for family in families:
        expected = ExpectedValues(family, materials)
        for spot in family.spots:
            value = expected.value(family.row(spot.row), spot.column, spot.language).text
            writer.writerow((family.path, spot.row, spot.column, spot.language, value,
                             spot.source))
    return output.getvalue()

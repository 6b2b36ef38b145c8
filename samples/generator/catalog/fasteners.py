"""Screws, nuts, washers and clearance holes."""

from __future__ import annotations

from dataclasses import replace

from generator.build import Definition, slug
from generator.columns import (description, designation, dimension, file_name, flag, mass, number,
                               steel_density, text, whole)
from generator.model import Column, Spot, Template
from generator.source import SourceRow, SourceTable, read_table

_WASHERS_OUTSIDE_STANDARD = {"M1.7", "M2.3", "M2.6", "M7", "M26", "M28", "M32", "M35"}
_HOLES_OUTSIDE_STANDARD = {"M9", "M15", "M17", "M25", "M28", "M32"}
_HOLE_SERIES = {
    "DH_FINE": {"en": "fine", "de": "fein", "fr": "fine"},
    "DH_MEDIUM": {"en": "medium", "de": "mittel", "fr": "moyenne"},
    "DH_COARSE": {"en": "coarse", "de": "grob", "fr": "large"},
}


def definitions() -> list[Definition]:
    return [_hexagon_screws(), _socket_screws(), _hexagon_nuts(), _washers(), _clearance_holes()]


def _thread_size() -> Column:
    return text("SIZE", "Thread size", key=1, parameter="size")


def _size_and_length(facts: SourceRow) -> str:
    return f"{slug(facts['SIZE'])}x{slug(facts['L'])}"


def _hexagon_screws() -> Definition:
    table = read_table("iso-4017")
    columns = [
        _thread_size(),
        whole("L", "Nominal length", "mm", key=2, parameter="length", drives="geometry"),
        dimension("D", "Thread diameter"), number("P", "Thread pitch"),
        dimension("K", "Head height, maximum"), dimension("S", "Width across flats"),
        flag("PREF", "Preferred size", "true"),
        number("SP", "Proof stress, property class 8.8", "MPa", "580",
               check="IF({D}<=16,580,600)"),
        steel_density(),
        number("D2", "Pitch diameter", formula="{D}-0.649519*{P}"),
        number("D3", "Thread minor diameter", formula="{D}-1.226869*{P}"),
        number("DS", "Stress diameter", formula="({D2}+{D3})/2"),
        number("AS", "Stress area", "mm2", "PI/4*({DS})^2"),
        number("FP88", "Proof load, property class 8.8", "N", "{AS}*{SP}"),
        number("E", "Width across corners, theoretical", formula="{S}/cos(30deg)"),
        number("VH", "Head volume", "mm3", "sqrt(3)/2*({S})^2*{K}"),
        number("VT", "Threaded shank volume", "mm3", "PI/4*({D2})^2*{L}"),
        mass("({VH}+{VT})*{RHO}"),
        designation('"ISO 4017 - " & {SIZE} & " x " & {L}'),
        text("ORDER", "Order text", '{DESIG} & " - 8.8"'),
        description(table.titles),
        file_name('"iso4017-" & {SIZE} & "x" & {L}'),
    ]
    spots = [
        Spot("M10x50", "S", "ISO 4017: s of M10", "16"),
        Spot("M10x50", "P", "ISO 261: coarse pitch of M10", "1.5"),
        Spot("M10x50", "D2", "computed; ISO 724 prints 9.026", tabulated=9.026, within=0.0001),
        Spot("M10x50", "AS", "computed; ISO 898-1 prints 58.0 mm2", tabulated=58.0),
        Spot("M24x100", "AS", "computed; ISO 898-1 prints 353 mm2", tabulated=353),
        Spot("M24x100", "SP", "ISO 898-1: proof stress 8.8 above M16", "600"),
        Spot("M24x100", "FP88", "computed; ISO 898-1 prints 212000 N", tabulated=212000),
        Spot("M16x60", "SP", "ISO 898-1: proof stress 8.8 up to M16", "580"),
        Spot("M16x60", "E", "computed; 24 mm / cos 30 deg", tabulated=27.7128),
        Spot("M10x50", "MASS", "computed from volume and density"),
        Spot("M10x50", "DESIG", "ISO 4017: designation", "ISO 4017 - M10 x 50"),
        Spot("M10x50", "DESC", "title and designation", language="de",
             value="Sechskantschraube mit Gewinde bis Kopf - ISO 4017 - M10 x 50"),
        Spot("M14x40", "PREF", "ISO 262: M14 is second choice", "false"),
    ]
    return Definition(
        "iso-4017", "bolts", table, columns, _size_and_length, "hexagon", spots,
        derived=lambda facts: {} if facts["D"] <= 16 else {"SP": "600"},
        templates=[Template("Detailed", "hexagon-screw-detailed.model"),
                   Template("Simplified", "hexagon-screw.model", ("L", "D", "DESIG"))])


def _socket_screws() -> Definition:
    table = read_table("iso-4762")
    columns = [
        _thread_size(),
        dimension("L", "Nominal length", key=2, parameter="length"),
        dimension("D", "Thread diameter"), number("P", "Thread pitch"),
        dimension("DK", "Head diameter, maximum"), dimension("K", "Head height"),
        dimension("S", "Hexagon socket width across flats"),
        dimension("T", "Socket depth"),
        steel_density(),
        number("D2", "Pitch diameter", formula="{D}-0.649519*{P}"),
        number("D3", "Thread minor diameter", formula="{D}-1.226869*{P}"),
        number("AS", "Stress area", "mm2", "PI/4*({D}-0.9382*{P})^2"),
        number("B", "Thread length", formula="2*{D}+12mm"),
        number("LS", "Unthreaded shank length",
               formula="if({L}<={B}+3*{P}; 0*{L}; {L}-{B})"),
        number("VH", "Head volume", "mm3",
               "PI/4*({DK})^2*{K}-sqrt(3)/2*({S})^2*{T}"),
        number("VS", "Shank volume", "mm3", "PI/4*({D})^2*{L}"),
        mass("({VH}+{VS})*{RHO}"),
        designation('"ISO 4762 - " & {SIZE} & " x " & {L}'),
        description(table.titles),
        file_name('"iso4762-" & {SIZE} & "x" & {L}'),
    ]
    spots = [
        Spot("M8x40", "S", "ISO 4762: socket of M8", "6"),
        Spot("M8x40", "K", "ISO 4762: k of M8", "8"),
        Spot("M12x100", "B", "ISO 4762: reference thread length of M12", "36"),
        Spot("M12x100", "LS", "100 mm - 36 mm", "64"),
        Spot("M12x30", "LS", "fully threaded", "0"),
        Spot("M12x100", "AS", "computed; ISO 898-1 prints 84.3 mm2", tabulated=84.3),
        Spot("M12x100", "MASS", "computed from volume and density"),
        Spot("M1.6x2.5", "DESIG", "ISO 4762: designation", "ISO 4762 - M1.6 x 2.5"),
        Spot("M8x40", "DESC", "title and designation", language="fr",
             value="Vis à tête cylindrique à six pans creux - ISO 4762 - M8 x 40"),
        Spot("M8x40", "FILENAME", "joined from size and length", "iso4762-M8x40"),
    ]
    return Definition(
        "iso-4762", "screws", table, columns, _size_and_length, "socket", spots,
        templates=[Template("Screw", "socket-screw.model")])


def _hexagon_nuts() -> Definition:
    table = read_table("iso-4032")
    columns = [
        _thread_size(),
        dimension("D", "Thread diameter"), number("P", "Thread pitch"),
        dimension("M", "Nut height, maximum"), dimension("S", "Width across flats"),
        flag("PREF", "Preferred size", "true"),
        steel_density(),
        number("D2", "Pitch diameter", formula="{D}-0.649519*{P}"),
        number("D1", "Thread minor diameter of the nut", formula="{D}-1.082532*{P}"),
        number("E", "Width across corners, theoretical", formula="{S}/cos(30deg)"),
        number("VN", "Volume", "mm3", "(sqrt(3)/2*({S})^2-PI/4*({D2})^2)*{M}"),
        mass("{VN}*{RHO}"),
        designation('"ISO 4032 - " & {SIZE}'),
        description(table.titles),
    ]
    spots = [
        Spot("M10", "M", "ISO 4032: m max of M10", "8.4"),
        Spot("M10", "S", "ISO 4032: s of M10", "16"),
        Spot("M10", "D1", "computed; ISO 724 prints 8.376", tabulated=8.376, within=0.0001),
        Spot("M20", "D1", "computed; ISO 724 prints 17.294", tabulated=17.294, within=0.0001),
        Spot("M16", "MASS", "computed from volume and density"),
        Spot("M18", "PREF", "ISO 4032: second choice", "false"),
        Spot("M20", "PREF", "ISO 4032: first choice", "true"),
        Spot("M20", "DESC", "title and designation", language="fr",
             value="Écrou hexagonal, style 1 - ISO 4032 - M20"),
    ]
    return Definition(
        "iso-4032", "nuts", table, columns, lambda facts: slug(facts["SIZE"]), "nut", spots,
        templates=[Template("Nut", "hexagon-nut.model")])


def _washers() -> Definition:
    table = read_table("iso-7089")
    columns = [
        _thread_size(),
        number("D", "For thread diameter"),
        dimension("D1", "Hole diameter"), dimension("D2", "Outside diameter"),
        dimension("H", "Thickness, maximum"),
        steel_density(),
        number("W", "Ring width", formula="({D2}-{D1})/2"),
        number("V", "Volume", "mm3", "PI/4*(({D2})^2-({D1})^2)*{H}"),
        mass(),
        number("M1000", "Mass of 1000 pieces", "kg", "{MASS}*1000"),
        designation('"ISO 7089 - " & {SIZE}'),
        description(table.titles),
    ]
    spots = [
        Spot("M10", "D1", "ISO 7089: d1 of M10", "10.5"),
        Spot("M10", "D2", "ISO 7089: d2 of M10", "20"),
        Spot("M10", "W", "(20 - 10.5) / 2", "4.75"),
        Spot("M10", "M1000", "computed from volume and density"),
        Spot("M20", "V", "computed from the diameters and the thickness"),
        Spot("M7", "STATUS", "ISO 7089 has no M7", "Suppressed"),
        Spot("M8", "DESC", "title and designation", language="de",
             value="Flache Scheibe, normale Reihe - ISO 7089 - M8"),
    ]
    return Definition(
        "iso-7089", "washers", table, columns, lambda facts: slug(facts["SIZE"]), "ring", spots,
        standard_revision="2000",
        is_suppressed=lambda facts: facts["SIZE"] in _WASHERS_OUTSIDE_STANDARD,
        templates=[Template("Washer", "plain-washer.model")])


def _clearance_holes() -> Definition:
    table = _by_series(read_table("iso-273"))
    columns = [
        _thread_size(),
        text("SERIES", "Series of holes", key=2, parameter="series"),
        number("D", "Thread diameter"),
        dimension("DH", "Hole diameter"),
        number("CL", "Radial clearance", formula="({DH}-{D})/2", check="({DH}-{D})/2"),
        number("RATIO", "Hole to thread ratio", "ul", "{DH}/{D}", check="{DH}/{D}"),
        text("NOTE", "Drawing note", '"Dia " & {DH} & " through for " & {SIZE}', formulas={
            "en": '"Dia " & {DH} & " through for " & {SIZE}',
            "de": '"Ø " & {DH} & " durchgehend für " & {SIZE}',
            "fr": '"Ø " & {DH} & " débouchant pour " & {SIZE}'}),
        description(table.titles, '{SIZE} & " " & {SERIES}'),
    ]
    spots = [
        Spot("M10-fine", "DH", "ISO 273: fine series of M10", "10.5"),
        Spot("M10-medium", "DH", "ISO 273: medium series of M10", "11"),
        Spot("M10-coarse", "DH", "ISO 273: coarse series of M10", "12"),
        Spot("M10-medium", "CL", "(11 - 10) / 2", "0.5"),
        Spot("M36-medium", "RATIO", "39 / 36, eight digits", "1.0833333"),
        Spot("M10-medium", "SERIES", "localized cell", "medium"),
        Spot("M10-medium", "SERIES", "localized cell", "mittel", language="de"),
        Spot("M10-medium", "SERIES", "localized cell", "moyenne", language="fr"),
        Spot("M10-coarse", "NOTE", "localized formula", "Ø 12 durchgehend für M10",
             language="de"),
        Spot("M10-coarse", "DESC", "localized formula over a localized cell", language="de",
             value="Durchgangslöcher für Schrauben - M10 grob"),
        Spot("M9-fine", "STATUS", "ISO 273 has no M9", "Suppressed"),
    ]
    return Definition(
        "iso-273", "holes", table, columns,
        lambda facts: f"{slug(facts['SIZE'])}-{facts['FIT']}", "hole", spots,
        standard_revision="1979", is_feature=True,
        strings=lambda facts: {"SERIES": next(
            texts for texts in _HOLE_SERIES.values() if texts["en"] == facts["FIT"])},
        is_suppressed=lambda facts: facts["SIZE"] in _HOLES_OUTSIDE_STANDARD,
        templates=[Template("Hole", "clearance-hole.model")])


def _by_series(table: SourceTable) -> SourceTable:
    """The same table with one row for each size and series instead of three columns."""
    rows: list[SourceRow] = [
        {"SIZE": row["SIZE"], "D": row["D"], "DH": row[column], "FIT": texts["en"]}
        for row in table.rows for column, texts in _HOLE_SERIES.items()]
    return replace(table, columns=list(rows[0]), rows=rows)

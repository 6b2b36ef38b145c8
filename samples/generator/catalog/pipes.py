"""Steel pipe, copper tube and flanges."""

from __future__ import annotations

from generator.build import Definition, slug
from generator.columns import (COPPER, density, description, designation, dimension, flag, mass,
                               material, number, steel_density, text, whole)
from generator.model import Column, Spot, Template
from generator.source import read_table

_PIPE_KIND = {"en": "stainless steel", "de": "nichtrostender Stahl"}


def definitions() -> list[Definition]:
    return [_steel_pipe(), _copper_tube(), _plate_flanges(), _blind_flanges(),
            _inch_flanges()]


def _tube_columns() -> list[Column]:
    """Inch dimensions as the standard has them, and what follows in metric units."""
    return [
        number("NPSN", "Nominal size number", "ul", hidden=True),
        number("OD_IN", "Outside diameter, inch", "in"),
        number("S_IN", "Wall thickness, inch", "in"),
    ]


def _metric_tube_columns() -> list[Column]:
    return [
        dimension("OD", "Outside diameter", formula="{OD_IN}"),
        dimension("S", "Wall thickness", formula="{S_IN}"),
        number("DI", "Inside diameter", formula="{OD}-2*{S}"),
        number("AM", "Metal section area", "mm2", "PI/4*(({OD})^2-({DI})^2)"),
        number("AF", "Flow area", "mm2", "PI/4*({DI})^2"),
        number("MPM", "Mass per metre", "kg/m", "{AM}*{RHO}"),
    ]


def _steel_pipe() -> Definition:
    table = read_table("asme-b36-10m")
    columns = [
        text("NPS", "Nominal size", key=1, parameter="size"),
        text("SCH", "Schedule", key=2, parameter="schedule"),
        *_tube_columns(),
        flag("STAINLESS", "Stainless schedule", "false"),
        text("KIND", "Kind of steel", '"carbon steel"',
             formulas={"en": '"carbon steel"', "de": '"unlegierter Stahl"'}),
        material("A106-B"),
        steel_density(),
        *_metric_tube_columns(),
        designation('{NPS} & " Sch " & {SCH}'),
        text("ORDER", "Order text", '"Pipe ASME B36.10M " & {DESIG} & ", " & {KIND}', formulas={
            "en": '"Pipe ASME B36.10M " & {DESIG} & ", " & {KIND}',
            "de": '"Rohr ASME B36.10M " & {DESIG} & ", " & {KIND}'}),
    ]
    spots = [
        Spot("NPS6-40", "OD", "ASME B36.10M: 168.3 mm", tabulated=168.3),
        Spot("NPS6-40", "S", "ASME B36.10M: 7.11 mm", tabulated=7.11),
        Spot("NPS6-40", "MPM", "computed; ASME B36.10M prints 28.26 kg/m", tabulated=28.26),
        Spot("NPS2-40", "MPM", "computed; ASME B36.10M prints 5.44 kg/m", tabulated=5.44),
        Spot("NPS24-10", "OD", "24 in", "609.6"),
        Spot("NPS6-40s", "STAINLESS", "ASME B36.19M: schedule 40S", "true"),
        Spot("NPS6-40", "STAINLESS", "column-wide value", "false"),
        Spot("NPS6-40", "MATERIAL", "materials.csv", "ASTM A106 Grade B"),
        Spot("NPS6-40s", "MATERIAL", "materials.csv", "ASTM A312 TP304"),
        Spot("NPS6-40s", "KIND", "localized cell", "nichtrostender Stahl", language="de"),
        Spot("NPS6-40", "ORDER", "localized formulas", language="de",
             value="Rohr ASME B36.10M NPS 6 Sch 40, unlegierter Stahl"),
    ]
    return Definition(
        "asme-b36-10m", "pipes", table, columns,
        lambda facts: f"{slug(facts['NPS'])}-{facts['SCH']}", "ring", spots,
        derived=lambda facts: {"MATERIAL": "A312-TP304"} if facts["STAINLESS"] else {},
        strings=lambda facts: {"KIND": _PIPE_KIND} if facts["STAINLESS"] else {},
        templates=[Template("Pipe", "pipe.model")])


def _copper_tube() -> Definition:
    table = read_table("astm-b88")
    columns = [
        text("NPS", "Nominal size", key=1, parameter="size"),
        text("SCH", "Type of tube", key=2, parameter="schedule"),
        *_tube_columns(),
        material("CW024A"),
        density(COPPER, "8940"),
        *_metric_tube_columns(),
        number("VPM", "Content per metre", "l/m", "{AF}", check="{AF}/1000"),
        designation('"ASTM B88 - NPS " & {NPS} & " - " & {SCH}'),
        description(table.titles),
    ]
    spots = [
        Spot("1_2-K", "OD", "5/8 in", "15.875"),
        Spot("1_2-K", "S", "0.049 in", "1.2446"),
        Spot("1_2-K", "MPM", "computed; ASTM B88 prints 0.344 lb/ft", tabulated=0.512),
        Spot("2-L", "MPM", "computed; ASTM B88 prints 1.75 lb/ft", tabulated=2.604),
        Spot("2-L", "VPM", "computed from the inside diameter"),
        Spot("2-L", "MATERIAL", "materials.csv", "Cu-DHP"),
        Spot("1_2-K", "DESIG", "ASTM B88: designation", "ASTM B88 - NPS 1/2 - K"),
    ]
    return Definition(
        "astm-b88", "pipes", table, columns,
        lambda facts: f"{slug(str(facts['NPS']).replace(' ', '-'))}-{facts['SCH']}", "ring",
        spots, templates=[Template("Tube", "tube.model")])


def _bolting_columns(area: str) -> list[Column]:
    """Bolt holes and volume of a flange whose face, before drilling, has the given area."""
    return [
        number("AH", "Bolt hole area", "mm2", "{NB}*PI/4*({DH})^2"),
        number("V", "Volume", "mm3", f"({area}-{{AH}})*{{BT}}"),
        mass(),
        number("PITCHA", "Bolt hole pitch angle", "rad", "360deg/{NB}", check="2*PI/{NB}"),
        number("CHORD", "Bolt hole chord", formula="{KD}*sin({PITCHA}/2)",
               check="{KD}*SIN({PITCHA}/2)"),
    ]


def _flange_columns(bore: list[Column]) -> list[Column]:
    return [
        text("DN", "Nominal size", key=1, parameter="size"),
        whole("DNN", "Nominal size number", hidden=True),
        *bore,
        dimension("KD", "Bolt circle diameter"), dimension("D", "Outside diameter"),
        dimension("BT", "Thickness"), dimension("DH", "Bolt hole diameter"),
        whole("NB", "Number of bolts", drives="geometry"),
        material("1.0460"), steel_density(),
    ]


def _plate_flanges() -> Definition:
    table = read_table("en-1092-1-01-pn6")
    columns = [
        *_flange_columns([dimension("DI", "Bore")]),
        *_bolting_columns("PI/4*(({D})^2-({DI})^2)"),
        designation('"EN 1092-1 type 01 PN 6 - " & {DN}'),
        description(table.titles),
    ]
    spots = [
        Spot("DN100", "D", "EN 1092-1: D of DN 100 PN 6", "210"),
        Spot("DN100", "KD", "EN 1092-1: K of DN 100 PN 6", "170"),
        Spot("DN100", "NB", "EN 1092-1: bolts of DN 100 PN 6", "4"),
        Spot("DN100", "PITCHA", "pi / 2, eight digits", "1.5707963"),
        Spot("DN100", "CHORD", "170 / sqrt 2", "120.208"),
        Spot("DN200", "AH", "computed from eight holes of 18 mm"),
        Spot("DN200", "MASS", "computed from volume and density"),
        Spot("DN200", "MATERIAL", "materials.csv", "P250GH"),
    ]
    return Definition(
        "en-1092-1-type-01-pn6", "flanges", table, columns, lambda facts: slug(facts["DN"]),
        "flange", spots, templates=[Template("Flange", "plate-flange.model")])


def _blind_flanges() -> Definition:
    table = read_table("en-1092-1-05-pn6")
    columns = [
        *_flange_columns([]), *_bolting_columns("PI/4*({D})^2"),
        designation('"EN 1092-1 type 05 PN 6 - " & {DN}'),
        description(table.titles),
    ]
    spots = [
        Spot("DN50", "D", "EN 1092-1: D of DN 50 PN 6", "140"),
        Spot("DN50", "DH", "EN 1092-1: holes of DN 50 PN 6", "14"),
        Spot("DN300", "NB", "EN 1092-1: bolts of DN 300 PN 6", "12"),
        Spot("DN300", "CHORD", "395 mm * sin 15 deg", "102.234"),
        Spot("DN200", "MASS", "computed from volume and density"),
        Spot("DN300", "DESC", "title and designation", language="fr",
             value="Bride pleine - EN 1092-1 type 05 PN 6 - DN300"),
    ]
    return Definition(
        "en-1092-1-type-05-pn6", "flanges", table, columns, lambda facts: slug(facts["DN"]),
        "blind", spots, templates=[Template("Flange", "blind-flange.model")])


def _inch_flanges() -> Definition:
    table = read_table("asme-b16-5-class-300")
    columns = [
        text("NPS", "Nominal size", key=1, parameter="size"),
        number("NPSN", "Nominal size number", "ul", hidden=True),
        dimension("O", "Outside diameter"), dimension("TF", "Minimum thickness"),
        dimension("X", "Hub diameter"), number("AH", "Hub diameter at the weld"),
        number("YS", "Length through hub, slip-on"),
        number("YW", "Length through hub, welding neck"),
        dimension("BS", "Bore"), dimension("W", "Bolt circle diameter"),
        number("DH_IN", "Bolt hole diameter, inch", "in"),
        whole("NB", "Number of bolts", drives="geometry"),
        number("DB_IN", "Bolt diameter, inch", "in"),
        steel_density(),
        dimension("DH", "Bolt hole diameter", formula="{DH_IN}"),
        number("DB", "Bolt diameter", formula="{DB_IN}"),
        number("CLR", "Bolt hole clearance", formula="{DH}-{DB}"),
        number("PITCHA", "Bolt hole pitch angle", "rad", "360deg/{NB}", check="2*PI/{NB}"),
        number("VRING", "Ring volume", "mm3",
               "(PI/4*(({O})^2-({BS})^2)-{NB}*PI/4*({DH})^2)*{TF}"),
        mass("{VRING}*{RHO}", "Approximate mass"),
        designation('"ASME B16.5 - NPS " & {NPS} & " - Class 300"'),
        description(table.titles),
    ]
    spots = [
        Spot("2", "O", "ASME B16.5: O of NPS 2 class 300", "165"),
        Spot("2", "W", "ASME B16.5: W of NPS 2 class 300", "127"),
        Spot("2", "DH", "3/4 in", "19.05"),
        Spot("2", "CLR", "1/8 in", "3.175"),
        Spot("24", "PITCHA", "pi / 12, eight digits", "0.26179939"),
        Spot("4", "MASS", "computed from volume and density"),
        Spot("1-1_2", "DESIG", "ASME B16.5: designation", "ASME B16.5 - NPS 1 1/2 - Class 300"),
    ]
    return Definition(
        "asme-b16-5-class-300", "flanges", table, columns,
        lambda facts: slug(str(facts["NPS"]).replace(" ", "-")), "flange", spots,
        templates=[Template("Flange", "slip-on-flange.model")])

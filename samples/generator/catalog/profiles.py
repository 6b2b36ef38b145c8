"""Rolled beams, hollow sections and angles."""

from __future__ import annotations

from generator.build import Definition, slug
from generator.columns import (description, designation, dimension, file_name, flag, material,
                               number, steel_density, text)
from generator.model import Column, Spot, Template
from generator.source import read_table

_HEAVY_BEAM_HEIGHT = 400


def definitions() -> list[Definition]:
    return [_ipe_beams(), _wide_flange_beams(), _square_hollow_sections(), _angles()]


def _name() -> Column:
    return text("NAME", "Section", key=1, parameter="size")


def _mass_per_metre() -> list[Column]:
    """The tabulated mass, which some members correct, and the one that the area gives."""
    return [number("M", "Mass per metre", "kg/m", parameter="mass"),
            number("A", "Section area", "mm2")]


def _from_area(area: str) -> list[Column]:
    return [
        number("AC", "Section area, computed", "mm2", area),
        number("MC", "Mass per metre, computed", "kg/m", "{AC}*{RHO}"),
        number("RY", "Radius of gyration y", formula="sqrt({IY}/{A})"),
    ]


def _ipe_beams() -> Definition:
    table = read_table("en-10365-ipe")
    columns = [
        _name(),
        dimension("H", "Section height"), dimension("B", "Flange width"),
        dimension("TW", "Web thickness"), dimension("TF", "Flange thickness"),
        dimension("R", "Root radius"),
        *_mass_per_metre(),
        number("IY", "Second moment of area y", "mm4"),
        number("WELY", "Elastic section modulus y", "mm3"),
        number("WPLY", "Plastic section modulus y", "mm3"),
        number("IZ", "Second moment of area z", "mm4"),
        number("WELZ", "Elastic section modulus z", "mm3"),
        material("1.0038"), steel_density(),
        number("HI", "Height between flanges", formula="{H}-2*{TF}"),
        number("DW", "Straight web depth", formula="{HI}-2*{R}"),
        *_from_area("2*{B}*{TF}+{HI}*{TW}+(4-PI)*({R})^2"),
        number("RZ", "Radius of gyration z", formula="sqrt({IZ}/{A})"),
        number("PL", "Painted surface per metre", "m2/m",
               "2*({B}+{H}-{TW})+2*{B}-(8-2*PI)*{R}"),
        number("SHAPE", "Shape factor y", "ul", "{WPLY}/{WELY}"),
        number("LEN", "Length", formula="[500;12000;1;6000]", custom=True, key=2,
               check=f"IF({{H}}>={_HEAVY_BEAM_HEIGHT},12000,6000)", drives="geometry"),
        number("MP", "Mass of the piece", "kg", "{M}*{LEN}", check="{M}*{LEN}/1000"),
        designation('{NAME} & " EN 10365"'),
        text("ORDER", "Order text", '{DESIG} & " - " & {LEN} & " - " & {MATERIAL}'),
        description(table.titles),
        file_name('{NAME} & "-" & {LEN}'),
    ]
    spots = [
        Spot("IPE200", "B", "EN 10365: b of IPE 200", "100"),
        Spot("IPE200", "M", "EN 10365: mass of IPE 200", "22.4"),
        Spot("IPE200", "AC", "computed; EN 10365 prints 28.48 cm2", tabulated=2848, within=0.001),
        Spot("IPE200", "RY", "computed; handbooks print 8.26 cm", tabulated=82.6, within=0.001),
        Spot("IPE200", "RZ", "computed; handbooks print 2.24 cm", tabulated=22.4, within=0.003),
        Spot("IPE200", "PL", "computed; handbooks print 0.768 m2/m", tabulated=0.768),
        Spot("IPE200", "LEN", "default of the range", "6000"),
        Spot("IPE200", "MP", "22.4 kg/m * 6 m", "134.4"),
        Spot("IPE600", "LEN", "default of the member's own range", "12000"),
        Spot("IPE200", "ORDER", "material name from materials.csv",
             "IPE200 EN 10365 - 6000 - S235JR"),
    ]
    return Definition(
        "en-10365-ipe", "profiles", table, columns, lambda facts: slug(facts["NAME"]), "beam",
        spots,
        derived=lambda facts: ({"LEN": "[500;18000;1;12000]"}
                               if facts["H"] >= _HEAVY_BEAM_HEIGHT else {}),
        templates=[Template("Detailed", "rolled-beam-with-radii.model"),
                   Template("Simplified", "rolled-beam.model", ("H", "B", "TW", "TF", "LEN"))])


def _wide_flange_beams() -> Definition:
    table = read_table("aisc-w")
    titles = {"en": table.titles["en"], "de": "Breitflanschprofil"}
    columns = [
        _name(),
        number("WLB", "Weight per foot", "lb/ft"),
        number("A_IN2", "Section area, inch", "in2"),
        number("D_IN", "Depth, inch", "in"), number("BF_IN", "Flange width, inch", "in"),
        number("TW_IN", "Web thickness, inch", "in"),
        number("TF_IN", "Flange thickness, inch", "in"),
        number("IX_IN4", "Second moment of area x, inch", "in4"),
        number("SX_IN3", "Elastic section modulus x, inch", "in3"),
        number("ZX_IN3", "Plastic section modulus x, inch", "in3"),
        number("M", "Mass per metre", "kg/m", "{WLB}", parameter="mass"),
        dimension("D", "Section height", formula="{D_IN}"),
        dimension("BF", "Flange width", formula="{BF_IN}"),
        dimension("TW", "Web thickness", formula="{TW_IN}"),
        dimension("TF", "Flange thickness", formula="{TF_IN}"),
        number("A", "Section area", "mm2", "{A_IN2}"),
        number("RX", "Radius of gyration x", formula="sqrt({IX_IN4}/{A_IN2})"),
        number("SHAPEF", "Shape factor x", "ul", "{ZX_IN3}/{SX_IN3}"),
        number("MR", "Mass per metre, rounded", "kg/m", "round({M}*10)/10",
               check="ROUND({M},1)", hidden=True),
        text("LABEL", "Label", '{NAME} & " (" & {MR} & " kg/m)"'),
        description(titles, "{NAME}"),
    ]
    spots = [
        Spot("W8X31", "WLB", "AISC: nominal weight of W8X31", "31"),
        Spot("W8X31", "IX_IN4", "AISC: Ix of W8X31", "110"),
        Spot("W8X31", "RX", "computed; AISC prints 3.47 in", tabulated=88.1),
        Spot("W12X26", "RX", "computed; AISC prints 5.17 in", tabulated=131.3),
        Spot("W44X335", "D", "44 in", "1117.6"),
        Spot("W44X335", "M", "335 lb/ft", "498.535"),
        Spot("W44X335", "LABEL", "name and rounded mass", "W44X335 (498.5 kg/m)"),
        Spot("W44X335", "DESC", "localized formula", "Breitflanschprofil - W44X335",
             language="de"),
    ]
    return Definition(
        "aisc-w", "profiles", table, columns, lambda facts: slug(facts["NAME"]), "beam", spots,
        titles=titles, templates=[Template("Beam", "rolled-beam.model")])


def _square_hollow_sections() -> Definition:
    table = read_table("en-10210-2-shs")
    columns = [
        _name(),
        dimension("B", "Width"), number("H", "Section height", formula="{B}", check="{B}"),
        dimension("T", "Wall thickness"),
        dimension("RO", "Outer corner radius"), dimension("RI", "Inner corner radius"),
        *_mass_per_metre(),
        number("IY", "Second moment of area y", "mm4"),
        number("WELY", "Elastic section modulus y", "mm3"),
        number("WPLY", "Plastic section modulus y", "mm3"),
        number("IZ", "Second moment of area z", "mm4", "{IY}"),
        number("WELZ", "Elastic section modulus z", "mm3", "{WELY}"),
        flag("HOT", "Hot finished", "false"),
        text("STD", "Standard of the member", '"EN 10219"', parameter="member-standard"),
        material("1.0039"), steel_density(),
        *_from_area("2*{T}*({B}+{H}-2*{T})-(4-PI)*(({RO})^2-({RI})^2)"),
        designation('{STD} & " - " & {H} & " x " & {B} & " x " & {T}'),
        text("ORDER", "Order text", '{DESIG} & " - " & {MATERIAL}'),
        description(table.titles),
    ]
    spots = [
        Spot("SHS100x5", "M", "EN 10219-2: mass of 100 x 5", "14.4"),
        Spot("SHS100x5", "AC", "computed; EN 10219-2 prints 18.4 cm2", tabulated=1840),
        Spot("SHS100x5", "MC", "computed; EN 10219-2 prints 14.4 kg/m", tabulated=14.4),
        Spot("SHS100x5", "RY", "computed; EN 10219-2 prints 3.84 cm", tabulated=38.4),
        Spot("SHS400x20", "HOT", "EN 10210-2: hot finished", "true"),
        Spot("SHS400x20", "ORDER", "material name from materials.csv",
             "EN 10210 - 400 x 400 x 20 - S355J2H"),
        Spot("SHS20x2", "ORDER", "material name from materials.csv",
             "EN 10219 - 20 x 20 x 2 - S235JRH"),
        Spot("SHS20x2", "H", "equals the width", "20"),
    ]
    return Definition(
        "en-10210-2-shs", "profiles", table, columns, lambda facts: slug(facts["NAME"]), "box",
        spots, standard_revision="2006",
        derived=lambda facts: ({"STD": "EN 10210", "MATERIAL": "1.0576"}
                               if facts["HOT"] else {}),
        templates=[Template("Section", "hollow-section.model")])


def _angles() -> Definition:
    table = read_table("en-10056-1")
    columns = [
        _name(),
        dimension("H", "Long leg"), dimension("B", "Short leg", formula="{H}"),
        dimension("T", "Thickness"),
        dimension("R1", "Root radius"), dimension("R2", "Toe radius"),
        *_mass_per_metre(),
        number("IY", "Second moment of area y", "mm4"),
        number("IZ", "Second moment of area z", "mm4", "{IY}"),
        flag("EQ", "Equal legs", "true"),
        steel_density(),
        *_from_area("{T}*({H}+{B}-{T})+(1-PI/4)*(({R1})^2-2*({R2})^2)"),
        designation('"L " & {H} & " x " & {T} & " EN 10056-1"'),
        description(table.titles),
    ]
    spots = [
        Spot("L100x10", "M", "EN 10056-1: mass of L 100 x 10", "15"),
        Spot("L100x10", "AC", "computed; EN 10056-1 prints 19.2 cm2", tabulated=1920),
        Spot("L100x10", "RY", "computed; EN 10056-1 prints 3.04 cm", tabulated=30.4),
        Spot("L100x10", "B", "equals the long leg", "100"),
        Spot("L150x90x12", "B", "EN 10056-1: short leg", "90"),
        Spot("L150x90x12", "EQ", "EN 10056-1: unequal legs", "false"),
        Spot("L100x10", "DESIG", "column formula", "L 100 x 10 EN 10056-1"),
        Spot("L150x90x12", "DESIG", "formula of the cell", "L 150 x 90 x 12 EN 10056-1"),
        Spot("L150x90x12", "DESC", "title and designation", language="de",
             value="Winkelstahl, gleich- und ungleichschenklig - L 150 x 90 x 12 EN 10056-1"),
    ]
    unequal = '"L " & {H} & " x " & {B} & " x " & {T} & " EN 10056-1"'
    return Definition(
        "en-10056-1", "profiles", table, columns, lambda facts: slug(facts["NAME"]), "angle",
        spots, standard_revision="2017",
        derived=lambda facts: {} if facts["EQ"] else {"DESIG": unequal},
        templates=[Template("Angle", "angle.model")])

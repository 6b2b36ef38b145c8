"""Bearings, keys, gears and chains."""

from __future__ import annotations

from generator.build import Definition, slug
from generator.columns import (description, designation, dimension, file_name, flag, mass,
                               material, number, steel_density, text, whole)
from generator.model import (CategoryParameter, Column, HiddenDomain, Spot, Template, stable_guid)
from generator.source import read_table

_SPECIAL_BEARINGS = {"32206 BJ2/QCL7CVA606", "JL 26749 F/710"}
_SEALED = {"en": "seals", "de": "Dichtscheiben"}
_BEARING_WORDS = {"en": "Bearing", "de": "Lager", "fr": "Roulement"}


def definitions() -> list[Definition]:
    return [_ball_bearings(), _capped_ball_bearings(), _tapered_bearings(), _keys(),
            _spur_gears(), _racks(), _chains()]


def _bearing_name() -> Column:
    return text("NAME", "Designation", key=1, parameter="designation",
                drives="property:Designation")


def _catalogue_mass() -> Column:
    return number("MASS", "Mass", "kg", parameter="mass", drives="property:Mass")


def _load_ratings() -> list[Column]:
    return [number("CDYN", "Basic dynamic load rating", "kN"),
            number("C0", "Basic static load rating", "kN")]


def _bearing_title(languages: tuple[str, ...]) -> Column:
    formulas = {language: f'"{_BEARING_WORDS[language]} " & {{NAME}} & " " & {{D1}} & "x" & '
                          '{D2} & "x" & {B}' for language in languages}
    return text("TITLE", "Title", formulas["en"], formulas=formulas)


def _ball_geometry() -> list[Column]:
    return [
        number("DM", "Mean diameter", formula="({D1}+{D2})/2"),
        number("HS", "Section height of the rings", formula="({D2}-{D1})/2"),
        number("DW", "Ball diameter, approximate", formula="0.6*{HS}"),
        number("RATIO", "Load rating ratio", "ul", "{CDYN}/{C0}"),
    ]


def _ball_bearings() -> Definition:
    table = read_table("iso-15-deep-groove-ball")
    columns = [
        _bearing_name(),
        dimension("D1", "Bore"), dimension("D2", "Outside diameter"), dimension("B", "Width"),
        *_load_ratings(),
        whole("NREF", "Reference speed", "rpm"), whole("NLIM", "Limiting speed", "rpm"),
        _catalogue_mass(),
        dimension("R", "Chamfer"),
        *_ball_geometry(),
        number("PEQ", "Equivalent load, one tenth of the dynamic rating", "kN", "0.1*{CDYN}",
               check="0.1*{CDYN}"),
        number("REV", "One revolution", "revolution", "1", hidden=True),
        number("L10H", "Rating life at limiting speed", "h",
               "1e6*({CDYN}/{PEQ})^3*{REV}/{NLIM}",
               check="10^6*({CDYN}/{PEQ})^3/(60*{NLIM})"),
        _bearing_title(("en", "de", "fr")),
    ]
    spots = [
        Spot("6200", "D1", "ISO 15: bore of 6200", "10"),
        Spot("6200", "D2", "ISO 15: outside diameter of 6200", "30"),
        Spot("6200", "B", "ISO 15: width of 6200", "9"),
        Spot("6200", "DM", "(10 + 30) / 2", "20"),
        Spot("6200", "RATIO", "5.4 / 2.36, eight digits", "2.2881356"),
        Spot("608", "L10H", "1e9 revolutions at 48000 1/min", "347.22222"),
        Spot("608", "TITLE", "localized formula", "Lager 608 8x22x7", language="de"),
        Spot("608", "TITLE", "localized formula", "Roulement 608 8x22x7", language="fr"),
    ]
    return Definition(
        "iso-15-deep-groove", "bearings", table, columns, lambda facts: slug(facts["NAME"]),
        "bearing", spots, templates=[Template("Bearing", "ball-bearing.model")])


def _capped_ball_bearings() -> Definition:
    table = read_table("iso-15-deep-groove-ball-capped")
    columns = [
        _bearing_name(),
        dimension("D1", "Bore"), dimension("D2", "Outside diameter"), dimension("B", "Width"),
        *_load_ratings(),
        whole("NLIM", "Limiting speed", "rpm"),
        _catalogue_mass(),
        dimension("R", "Chamfer"),
        flag("SHIELDED", "Metal shields", "true"),
        text("KIND", "Capping", '"metal shields"',
             formulas={"en": '"metal shields"', "de": '"Deckscheiben"'}),
        *_ball_geometry(),
        _bearing_title(("en", "de")),
        text("FULL_TITLE", "Parts list text", '{TITLE} & ", " & {KIND}'),
    ]
    spots = [
        Spot("E2.608-2Z", "D2", "ISO 15: outside diameter of 608", "22"),
        Spot("E2.608-2Z", "HS", "(22 - 8) / 2", "7"),
        Spot("E2.608-2Z", "DW", "0.6 * 7", "4.2"),
        Spot("E2.608-2Z", "KIND", "localized column-wide value", "Deckscheiben", language="de"),
        Spot("638-2RZ", "SHIELDED", "suffix RZ: seals", "false"),
        Spot("638-2RZ", "KIND", "localized cell", "Dichtscheiben", language="de"),
        Spot("638-2RZ", "FULL_TITLE", "one formula over localized columns",
             "Lager 638-2RZ 8x28x6, Dichtscheiben", language="de"),
        Spot("638-2RZ", "FULL_TITLE", "one formula over localized columns",
             "Bearing 638-2RZ 8x28x6, seals"),
    ]
    return Definition(
        "iso-15-deep-groove-capped", "bearings", table, columns,
        lambda facts: slug(facts["NAME"]), "bearing", spots,
        strings=lambda facts: {} if facts["SHIELDED"] else {"KIND": _SEALED},
        templates=[Template("Bearing", "ball-bearing-capped.model")])


def _tapered_bearings() -> Definition:
    table = read_table("iso-355-tapered-roller")
    table.columns.append("SRC_ROW")
    for index, row in enumerate(table.rows, start=1):
        row["SRC_ROW"] = str(index)
    columns = [
        _bearing_name(),
        dimension("D1", "Bore"), dimension("D2", "Outside diameter"),
        dimension("T", "Total width"),
        *_load_ratings(),
        whole("NREF", "Reference speed", "rpm"), whole("NLIM", "Limiting speed", "rpm"),
        _catalogue_mass(),
        dimension("B", "Inner ring width"), dimension("CW", "Outer ring width"),
        number("A", "Pressure point distance"),
        number("E", "Limiting value e", "ul"), number("Y", "Axial factor Y", "ul"),
        number("Y0", "Axial factor Y0", "ul"),
        whole("SRC_ROW", "Row of the source table", hidden=True, parameter="source-row"),
        number("DM", "Mean diameter", formula="({D1}+{D2})/2"),
        number("ALPHA", "Contact angle", "deg", "atan({E}/1.5)"),
        number("YCHK", "Axial factor from the contact angle", "ul", "0.4/tan({ALPHA})"),
        number("STAND", "Inner ring stand-out", formula="{T}-{CW}"),
        _bearing_title(("en", "de", "fr")),
    ]
    spots = [
        Spot("30206J2_Q", "D2", "ISO 355: outside diameter of 30206", "62"),
        Spot("30206J2_Q", "T", "ISO 355: width of 30206", "17.25"),
        Spot("30206J2_Q", "STAND", "17.25 - 14", "3.25"),
        Spot("30206J2_Q", "ALPHA", "computed; ISO 355 prints 14 deg 2 min 10 s",
             tabulated=14.036, within=0.02),
        Spot("30206J2_Q", "YCHK", "computed; catalogues print 1.6", tabulated=1.6, within=0.02),
        Spot("JL26749F_710", "STATUS", "a special variant", "Suppressed"),
        Spot("30206J2_Q", "TITLE", "localized formula", "Roulement 30206 J2/Q 30x62x16",
             language="fr"),
    ]
    review = HiddenDomain(
        stable_guid("category", "import-data"),
        {"source-row": CategoryParameter(stable_guid("parameter", "source-row"), "SOURCE_ROW",
                                         "integer", member=True),
         "review-state": CategoryParameter(stable_guid("parameter", "review-state"),
                                           "REVIEW_STATE")},
        {"review-state": "compared with the source table"})
    return Definition(
        "iso-355-tapered-roller", "bearings", table, columns, lambda facts: slug(facts["NAME"]),
        "bearing", spots, hidden_domain=review,
        is_suppressed=lambda facts: facts["NAME"] in _SPECIAL_BEARINGS,
        templates=[Template("Bearing", "tapered-roller-bearing.model")])


def _keys() -> Definition:
    table = read_table("din-6885-1-a")
    columns = [
        text("SECTION", "Key section", '{B} & "x" & {H}', key=1, parameter="size"),
        whole("L", "Length", "mm", key=2, parameter="length", drives="geometry"),
        dimension("B", "Width"), dimension("H", "Height"),
        number("T1", "Shaft keyway depth"), number("T2", "Hub keyway depth"),
        material("1.0503"), steel_density(),
        number("LT", "Straight length", formula="{L}-{B}"),
        number("AS", "Shear area", "mm2", "{B}*{LT}+PI/4*({B})^2"),
        number("AP", "Hub bearing area", "mm2", "({H}-{T1})*{LT}"),
        number("V", "Volume", "mm3", "{AS}*{H}"),
        mass(),
        designation('"DIN 6885 - A " & {B} & " x " & {H} & " x " & {L}'),
        description(table.titles),
    ]
    spots = [
        Spot("8x7x40", "T1", "DIN 6885-1: t1 of 8 x 7", "4"),
        Spot("8x7x40", "T2", "DIN 6885-1: t2 of 8 x 7", "3.3"),
        Spot("8x7x40", "LT", "40 - 8", "32"),
        Spot("8x7x40", "AP", "(7 - 4) * 32", "96"),
        Spot("8x7x40", "AS", "computed: 256 + 16 pi"),
        Spot("3x3x10", "MASS", "computed from volume and density"),
        Spot("8x7x40", "DESIG", "DIN 6885-1: designation", "DIN 6885 - A 8 x 7 x 40"),
        Spot("8x7x40", "MATERIAL", "materials.csv", "C45"),
    ]
    return Definition(
        "din-6885-1-a", "keys", table, columns,
        lambda facts: f"{facts['SECTION']}x{slug(facts['L'])}", "key", spots,
        standard_revision="1968", templates=[Template("Key", "parallel-key.model")])


def _spur_gears() -> Definition:
    table = read_table("iso-54-spur-gear")
    columns = [
        text("NAME", "Gear", '"m" & {M} & " z" & {Z}', parameter="size"),
        dimension("M", "Module", key=1), whole("Z", "Number of teeth", key=2, drives="geometry"),
        whole("ALPHA", "Pressure angle", "deg", "20"),
        dimension("B", "Face width", formula="10*{M}"),
        flag("SERIES1", "Module of series I", "true"),
        material("1.1191"), steel_density(),
        number("D", "Reference diameter", formula="{M}*{Z}"),
        number("HA", "Addendum", formula="{M}"),
        number("HF", "Dedendum", formula="1.25*{M}"),
        number("H", "Tooth depth", formula="{HA}+{HF}"),
        dimension("DA", "Tip diameter", formula="{D}+2*{HA}"),
        dimension("DF", "Root diameter", formula="{D}-2*{HF}"),
        number("DB", "Base diameter", formula="{D}*cos({ALPHA})"),
        number("P", "Circular pitch", formula="PI*{M}"),
        number("S", "Tooth thickness at the reference circle", formula="{P}/2"),
        number("PB", "Base pitch", formula="{P}*cos({ALPHA})"),
        whole("UNDERCUT", "Undercut without profile shift (1 = yes)", "ul", "{Z}<17",
              check="IF({Z}<17,1,0)", drives="feature:Undercut"),
        number("V", "Blank volume, solid", "mm3", "PI/4*({D})^2*{B}"),
        mass(),
        designation('"Spur gear m" & {M} & " z" & {Z} & " b" & {B}'),
        description(table.titles, "{NAME}"),
        file_name('"spur-gear-m" & {M} & "-z" & {Z}'),
    ]
    spots = [
        Spot("m2-z20", "D", "2 * 20", "40"),
        Spot("m2-z20", "DA", "2 * (20 + 2)", "44"),
        Spot("m2-z20", "DF", "2 * (20 - 2.5)", "35"),
        Spot("m2-z20", "DB", "40 * cos 20 deg", "37.5877"),
        Spot("m2-z20", "P", "2 pi, six digits", "6.28319"),
        Spot("m2-z16", "UNDERCUT", "theoretical limit 17", "1"),
        Spot("m2-z17", "UNDERCUT", "theoretical limit 17", "0"),
        Spot("m2-z20", "B", "column formula 10 m", "20"),
        Spot("m10-z20", "B", "own cell of the large modules, 8 m", "80"),
        Spot("m1.75-z20", "SERIES1", "ISO 54: 1.75 is of series II", "false"),
        Spot("m2-z17", "MASS", "computed from volume and density"),
        Spot("m2-z20", "DESC", "localized formula", "Stirnrad, geradverzahnt - m2 z20",
             language="de"),
    ]
    return Definition(
        "iso-54-spur-gear", "gears", table, columns,
        lambda facts: f"m{slug(facts['M'])}-z{slug(facts['Z'])}", "gear", spots,
        standard_revision="1996", templates=[Template("Gear", "spur-gear.model", nested=True)])


def _racks() -> Definition:
    table = read_table("iso-53-rack")
    columns = [
        text("NAME", "Rack", '"m" & {M} & " x " & {L}', parameter="size"),
        dimension("M", "Module", key=1),
        whole("L", "Length", "mm", key=2, parameter="length", drives="geometry"),
        dimension("W", "Body height over the tips"),
        number("P", "Circular pitch", formula="PI*{M}"),
        number("NT", "Whole teeth", "ul", "floor({L}/{P})"),
        number("REST", "Rest of the length", formula="{L}-{NT}*{P}"),
        number("HR", "Height of the reference line", formula="{W}-{M}"),
        description(table.titles, "{NAME}"),
    ]
    spots = [
        Spot("m1-250", "P", "pi, six digits", "3.14159"),
        Spot("m1-250", "NT", "250 / pi, whole part", "79"),
        Spot("m2-1000", "NT", "1000 / (2 pi), whole part", "159"),
        Spot("m2-1000", "REST", "computed: 1000 - 159 * 2 pi", tabulated=0.9735, within=0.001),
        Spot("m2-1000", "HR", "20 - 2", "18"),
        Spot("m2-1000", "NAME", "joined by the column formula", "m2 x 1000"),
    ]
    return Definition(
        "iso-53-rack", "gears", table, columns,
        lambda facts: f"m{slug(facts['M'])}-{slug(facts['L'])}", "rack", spots,
        standard_revision="1998", templates=[Template("Rack", "gear-rack.model")])


def _chains() -> Definition:
    table = read_table("iso-606-chain-b")
    columns = [
        text("NO", "Chain number", key=1, parameter="size"),
        dimension("P", "Pitch"), dimension("D1", "Roller diameter, maximum"),
        dimension("B1", "Width between inner plates, minimum"),
        whole("LINKS", "Number of links", "ul", "[10;1000;2;100]", custom=True, key=2,
              check="100", drives="geometry"),
        number("PIN", "Pitch, inch", "in", "{P}"),
        number("N1M", "Links per metre", "1/m", "1/{P}"),
        number("LEN", "Length", "m", "{LINKS}*{P}", check="{LINKS}*{P}/1000"),
        designation('"ISO 606 - " & {NO} & "-1"'),
        description(table.titles),
    ]
    spots = [
        Spot("08B", "P", "ISO 606: pitch of 08B", "12.7"),
        Spot("08B", "D1", "ISO 606: roller diameter of 08B", "8.51"),
        Spot("08B", "PIN", "12.7 mm", "0.5"),
        Spot("08B", "N1M", "1000 / 12.7, six digits", "78.7402"),
        Spot("08B", "LINKS", "default of the range", "100"),
        Spot("08B", "LEN", "100 * 12.7 mm", "1.27"),
        Spot("16B", "LEN", "100 * 25.4 mm", "2.54"),
        Spot("16B", "DESC", "title and designation", "Rollenkette, Bauart B - ISO 606 - 16B-1",
             language="de"),
    ]
    return Definition(
        "iso-606-chain-b", "chains", table, columns, lambda facts: slug(facts["NO"]), "chain",
        spots, templates=[Template("Chain", "roller-chain.model")])

#!/usr/bin/env python3
"""Compares the standalone provider's units with those of GNU units.

    compare_units.py CALCULATE

Every name of the provider's unit database that GNU units knows as well must stand for the same
quantity. Status 77 where GNU units or the database is missing.
"""

import re
import shutil
import subprocess
import sys
from pathlib import Path

from calculator import ask

DATABASE = Path("/usr/share/xml/udunits")
MISSING = 77

# Survey feet are not told apart from others alike, and constants of nature are of different years.
TOLERANCE = 1e-5

# One name for two units, or one with a zero of its own, for which GNU units has functions.
OTHER_MEANINGS = set(
    "R b bag bit bps byte cal calorie candle count degC degF firkin gal gamma h kt kts nt octet oz "
    "rad ua".split()
)
# Where UDUNITS-2 has it wrong: 0.1076391 lx, a hundredth of a lumen per square foot.
FAULTS = {"footcandle"}


def database_names():
    names = set()
    for path in DATABASE.glob("*.xml"):
        text = path.read_text(encoding="utf-8")
        names |= set(re.findall(r"<(?:singular|plural|symbol)[^>]*>\s*([A-Za-z_0-9]+)\s*<", text))
    return sorted(names)


UNKNOWN = object()


def gnu_factor(name, base):
    """How many of the base one of the name is; None when it is a unit of another kind."""
    command = ["units", "-t", "-1", "-o", "%.15g", "--", name, base]
    run = subprocess.run(command, capture_output=True, text=True, check=False)
    said = run.stdout + run.stderr
    if "Unknown" in said or "Error" in said:
        return UNKNOWN
    return None if "conformability" in said else float(said)


def gnu_text(base):
    return "1" if base == "ul" else base.replace("rad", "radian")


def main():
    program = sys.argv[1]
    if not shutil.which("units") or not DATABASE.is_dir():
        print("GNU units or the database of UDUNITS-2 is not installed")
        return MISSING
    names = database_names()
    units = ask(program, [("database", name) for name in names])
    known = [(name, base) for name, (status, base) in zip(names, units) if int(status) == 0]
    answers = ask(program, [("convert", "1", name, base) for name, base in known])
    compared = wrong = 0
    for (name, base), (status, answer) in zip(known, answers):
        factor = gnu_factor(name, gnu_text(base))
        if factor is UNKNOWN or name in OTHER_MEANINGS | FAULTS:
            continue
        compared += 1
        if factor is None or int(status) != 0 or abs(float(answer) / factor - 1) > TOLERANCE:
            wrong += 1
            print(f"{name}: {answer} {base}, in GNU units {factor}")
    print(f"{len(known)} names, {compared} known to GNU units too; {wrong} differ")
    return 0 if wrong == 0 and compared > 200 else 1


if __name__ == "__main__":
    sys.exit(main())

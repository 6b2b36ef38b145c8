#!/usr/bin/env python3
"""Generates the sample library from the tables in source/.

    python3 samples/generate.py            writes families/, toc.xml and expected/
    python3 samples/generate.py --check    compares what is there with what it would write

Both check the documents and every value first. Exit status 0: written, or nothing differs;
1: there are findings or differences.
"""

from __future__ import annotations

import argparse
import sys
import tempfile
from pathlib import Path

from generator import library, verify
from generator.build import MATERIALS_FILE, samples_folder
from generator.catalog import all_families
from generator.evaluation import read_materials


def main() -> int:
    parser = argparse.ArgumentParser(description="Generates the sample library.")
    parser.add_argument("--check", action="store_true",
                        help="write nothing; compare with the files that are there")
    options = parser.parse_args()
    families, materials = all_families(), read_materials(MATERIALS_FILE)
    files = library.generated_files(families, materials)
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(temporary)
        library.write(files, folder)
        findings = verify.verify(families, materials, folder)
        units = verify.check_units(families)
        if units is None:
            print("units: not checked, no udunits2 command", file=sys.stderr)
        findings += units or []
        if options.check and not findings:
            findings = [f"{name}: differs"
                        for name in library.differences(folder, samples_folder())]
    for finding in findings:
        print(finding, file=sys.stderr)
    if findings:
        return 1
    if not options.check:
        library.write(files, samples_folder())
    members = sum(len(family.rows) for family in families)
    print(f"{len(families)} families, {members} members, {len(files)} files")
    return 0


if __name__ == "__main__":
    sys.exit(main())

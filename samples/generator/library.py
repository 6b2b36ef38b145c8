"""All generated files of the sample library, and how they are written and compared."""

from __future__ import annotations

import shutil
from pathlib import Path

from generator.documents import (THUMBNAIL, contents_document, document_text, family_document,
                                 strings_document, strings_file_name)
from generator.model import Family
from generator.pictures import bitmap
from generator.spots import spot_values

CONTENTS_FILE = "toc.xml"
SPOT_VALUES_FILE = "expected/spot-values.csv"
FAMILIES_FOLDER = "families"


def generated_files(families: list[Family], materials: dict[str, str]) -> dict[str, bytes]:
    """Every generated file: its path relative to the samples folder, and its bytes."""
    files: dict[str, bytes] = {}
    for family in families:
        files[family.path] = document_text(family_document(family)).encode()
        for language in family.languages:
            strings = document_text(strings_document(family, language))
            files[f"{family.folder}/{strings_file_name(language)}"] = strings.encode()
        files[f"{family.folder}/{THUMBNAIL}"] = bitmap(family.picture)
    files[CONTENTS_FILE] = document_text(contents_document(families)).encode()
    files[SPOT_VALUES_FILE] = spot_values(families, materials).encode()
    return files


def write(files: dict[str, bytes], folder: Path) -> None:
    """Writes the files; the folder of the families holds nothing else afterwards."""
    shutil.rmtree(folder / FAMILIES_FOLDER, ignore_errors=True)
    for name, content in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def differences(first: Path, second: Path) -> list[str]:
    """The generated files that differ between two folders, or are in one of them only."""
    names = set(_names(first)) | set(_names(second))
    return [name for name in sorted(names) if _content(first / name) != _content(second / name)]


def _names(folder: Path) -> list[str]:
    below = [path for path in (folder / FAMILIES_FOLDER).rglob("*") if path.is_file()]
    return [path.relative_to(folder).as_posix() for path in below] + [CONTENTS_FILE,
                                                                      SPOT_VALUES_FILE]


def _content(path: Path) -> bytes | None:
    return path.read_bytes() if path.is_file() else None

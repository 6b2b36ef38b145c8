"""The families of the sample library, group by group."""

from __future__ import annotations

from generator.build import Definition, build
from generator.catalog import fasteners, machine_parts, pipes, profiles
from generator.model import Family


def all_families() -> list[Family]:
    """Every family, in the order of the library's folders."""
    definitions: list[Definition] = [
        *fasteners.definitions(), *pipes.definitions(), *profiles.definitions(),
        *machine_parts.definitions(),
    ]
    return [build(definition) for definition in definitions]

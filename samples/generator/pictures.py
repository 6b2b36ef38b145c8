"""Small preview pictures of the families, as 16-colour bitmap files."""

from __future__ import annotations

import math
import struct
from collections.abc import Callable

SIZE = 32
_PALETTE = [(255, 255, 255), (70, 90, 120)] + [(0, 0, 0)] * 14
_FILE_HEADER_SIZE, _INFO_HEADER_SIZE = 14, 40

Shape = Callable[[float, float], bool]
"""Whether a point is inside; both coordinates run from -1 to 1, y upwards."""


def bitmap(name: str) -> bytes:
    """The bitmap file of a named picture: SIZE x SIZE pixels, 4 bits each, bottom row first."""
    shape = _SHAPES[name]
    pixels = bytearray()
    for row in range(SIZE):
        for column in range(0, SIZE, 2):
            left, right = (int(shape(_middle(x), _middle(row))) for x in (column, column + 1))
            pixels.append(left << 4 | right)
    palette = b"".join(struct.pack("<4B", blue, green, red, 0) for red, green, blue in _PALETTE)
    offset = _FILE_HEADER_SIZE + _INFO_HEADER_SIZE + len(palette)
    file_header = struct.pack("<2sIHHI", b"BM", offset + len(pixels), 0, 0, offset)
    info_header = struct.pack("<IiiHHIIiiII", _INFO_HEADER_SIZE, SIZE, SIZE, 1, 4, 0,
                              len(pixels), 2835, 2835, len(_PALETTE), 0)
    return file_header + info_header + palette + bytes(pixels)


def _middle(index: int) -> float:
    return (2 * index + 1) / SIZE - 1


def _disc(radius: float, x0: float = 0, y0: float = 0) -> Shape:
    return lambda x, y: math.hypot(x - x0, y - y0) <= radius


def _box(left: float, bottom: float, right: float, top: float) -> Shape:
    return lambda x, y: left <= x <= right and bottom <= y <= top


def _polygon(sides: int, inner_radius: float) -> Shape:
    def inside(x: float, y: float) -> bool:
        return all(x * math.cos(k * math.tau / sides) + y * math.sin(k * math.tau / sides)
                   <= inner_radius for k in range(sides))
    return inside


def _both(*shapes: Shape) -> Shape:
    return lambda x, y: any(shape(x, y) for shape in shapes)


def _without(shape: Shape, *holes: Shape) -> Shape:
    return lambda x, y: shape(x, y) and not any(hole(x, y) for hole in holes)


def _around(count: int, radius: float, distance: float) -> Shape:
    angles = [k * math.tau / count for k in range(count)]
    return _both(*(_disc(radius, distance * math.cos(a), distance * math.sin(a))
                   for a in angles))


def _gear(x: float, y: float) -> bool:
    edge = 0.9 if math.cos(10 * math.atan2(y, x)) > 0 else 0.7
    return 0.25 < math.hypot(x, y) <= edge


_SHAPES: dict[str, Shape] = {
    "hexagon": _both(_box(-0.7, 0.45, 0.7, 0.9), _box(-0.3, -0.9, 0.3, 0.45)),
    "socket": _without(_both(_box(-0.55, 0.3, 0.55, 0.9), _box(-0.3, -0.9, 0.3, 0.3)),
                       _box(-0.25, 0.55, 0.25, 0.9)),
    "nut": _without(_polygon(6, 0.8), _disc(0.45)),
    "ring": _without(_disc(0.9), _disc(0.55)),
    "hole": _without(_box(-0.9, -0.9, 0.9, 0.9), _disc(0.45)),
    "flange": _without(_disc(0.95), _disc(0.35), _around(8, 0.12, 0.7)),
    "blind": _without(_disc(0.95), _around(8, 0.12, 0.7)),
    "beam": _both(_box(-0.7, 0.65, 0.7, 0.9), _box(-0.7, -0.9, 0.7, -0.65),
                  _box(-0.13, -0.65, 0.13, 0.65)),
    "box": _without(_box(-0.85, -0.85, 0.85, 0.85), _box(-0.6, -0.6, 0.6, 0.6)),
    "angle": _both(_box(-0.85, -0.85, -0.55, 0.85), _box(-0.55, -0.85, 0.85, -0.55)),
    "bearing": _both(_without(_disc(0.95), _disc(0.8)), _without(_disc(0.4), _disc(0.25)),
                     _around(8, 0.14, 0.6)),
    "key": _both(_box(-0.55, -0.35, 0.55, 0.35), _disc(0.35, -0.55), _disc(0.35, 0.55)),
    "gear": _gear,
    "rack": _both(_box(-0.95, -0.7, 0.95, 0), lambda x, y: 0 <= y <= 0.5
                  and math.cos(math.tau * x / 0.475) > 0.8 * y),
    "chain": _both(_without(_disc(0.4, -0.5), _disc(0.18, -0.5)),
                   _without(_disc(0.4, 0.5), _disc(0.18, 0.5)), _box(-0.25, -0.15, 0.25, 0.15)),
}

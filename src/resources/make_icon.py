#!/usr/bin/env python3
"""Draws kwdialogs.ico, the icon of the library's own dialogs: a sheet with a flange and its centre lines on it.

Each size is drawn for itself, with 4 x 4 samples a pixel; 32-bit pixels with an alpha channel and the mask that older
systems go by.
"""

import pathlib
import struct

SIZES = (16, 24, 32, 48)
SAMPLES = 4
FRAME, SHEET, BLUE, RED = (70, 70, 70), (255, 255, 255), (0, 0, 160), (190, 0, 0)


def colour_at(x, y, pixel):
    """The colour at a point of the unit square, None outside the sheet; lines are at least a pixel wide."""
    line = max(0.05, pixel)
    left, top, right, bottom, fold = 0.06, 0.0, 0.94, 1.0, 0.24
    cut = x - (right - fold) > y - top  # beyond the folded corner
    if not (left <= x < right and top <= y < bottom) or cut:
        return None
    edge = min(x - left, right - x, y - top, bottom - y, (y - top - (x - (right - fold))) * 0.7071)
    if edge < line or (x >= right - fold - line and y < top + fold + line and
                       (x < right - fold or y >= top + fold)):
        return FRAME
    dx, dy = x - 0.47, y - 0.57
    radius = (dx * dx + dy * dy) ** 0.5
    if abs(radius - 0.27) < line / 2 or abs(radius - 0.10) < line / 2:
        return BLUE
    if (abs(dx) < line / 2 or abs(dy) < line / 2) and radius < 0.36:
        return RED
    return SHEET


def image(size):
    """One image of the icon: header, pixels from the bottom up, mask."""
    pixels, mask = bytearray(), bytearray()
    for row in reversed(range(size)):
        bits = 0
        for column in range(size):
            found = [colour_at((column + (i + 0.5) / SAMPLES) / size, (row + (j + 0.5) / SAMPLES) / size, 1 / size)
                     for j in range(SAMPLES) for i in range(SAMPLES)]
            inside = [colour for colour in found if colour]
            red, green, blue = (sum(c[k] for c in inside) // len(inside) if inside else 0 for k in range(3))
            pixels += bytes((blue, green, red, 255 * len(inside) // len(found)))
            bits = bits << 1 | (not inside)
        mask += (bits << -size % 32).to_bytes((size + 31) // 32 * 4, "big")
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(pixels) + len(mask), 0, 0, 0, 0)
    return header + pixels + mask


def icon():
    """The whole file: a directory, then the images."""
    images = [image(size) for size in SIZES]
    directory, offset = struct.pack("<HHH", 0, 1, len(SIZES)), 6 + 16 * len(SIZES)
    for size, data in zip(SIZES, images):
        directory += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return directory + b"".join(images)


if __name__ == "__main__":
    pathlib.Path(__file__).with_name("kwdialogs.ico").write_bytes(icon())

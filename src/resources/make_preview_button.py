#!/usr/bin/env python3
"""Draws preview_button.bmp, the picture of the "Preview" button: six little sheets with drawings on them.

A 16-colour bitmap. Its background is the light grey that LoadImage with LR_LOADMAP3DCOLORS turns into the button's own
face colour.
"""

import pathlib
import struct

PALETTE = {".": (192, 192, 192), "#": (0, 0, 0), " ": (255, 255, 255), "-": (128, 128, 128), "b": (0, 0, 128),
           "r": (128, 0, 0), "g": (0, 128, 0)}

SHEETS = [  # 14 x 12 each, inside a black frame
    ["              ", "  bbbbbbbbbb  ", "  b        b  ", "  b  rr    b  ", "  b r  r   b  ", "  b r  r   b  ",
     "  b  rr    b  ", "  b        b  ", "  bbbbb    b  ", "      b    b  ", "      bbbbbb  ", "              "],
    ["              ", "     bbbb     ", "   bb    bb   ", "  b   rr   b  ", "  b  r  r  b  ", " b  r    r  b ",
     " b  r    r  b ", "  b  r  r  b  ", "  b   rr   b  ", "   bb    bb   ", "     bbbb     ", "              "],
    ["              ", "         gg   ", "        g  b  ", "       g   b  ", "      g    b  ", "     g     b  ",
     "    g      b  ", "   g       b  ", "  g        b  ", " gbbbbbbbbbb  ", "              ", "              "],
    ["              ", " bbbbbbbbbbbb ", " b     b    b ", " b     b    b ", " b          b ", " b     b    b ",
     " bbbb  bbbbbb ", " b          b ", " b          b ", " bbbbb  bbbbb ", "              ", "              "],
    ["              ", "   bbbbbbbb   ", "   b      b   ", "   b r r  b   ", "   b      b   ", " bbb r r  bbb ",
     " b          b ", " b          b ", " bbbbbbbbbbbb ", "              ", " g---------g  ", "              "],
    ["              ", "    ggg       ", "   g   g      ", "  g     g     ", " g       g    ", "          g   ",
     " bbbbbbbbbgbb ", "           g g", "            g ", " rr rr rr rr  ", "              ", "              "],
]
COLUMNS, GAP = 3, 4


def draw():
    """The picture as rows of PALETTE keys."""
    sheet_width, sheet_height = 16, 14  # with frame
    width = COLUMNS * sheet_width + (COLUMNS - 1) * GAP + 4
    height = 2 * sheet_height + GAP + 4
    picture = [["."] * width for _ in range(height)]
    for index, sheet in enumerate(SHEETS):
        left = 1 + index % COLUMNS * (sheet_width + GAP)
        top = 1 + index // COLUMNS * (sheet_height + GAP)
        framed = ["#" * sheet_width, *("#" + row + "#" for row in sheet), "#" * sheet_width]
        for y, row in enumerate(framed):
            for x, key in enumerate(row):
                picture[top + y + 2][left + x + 2] = "-"  # shadow, covered by the sheet except at right and bottom
        for y, row in enumerate(framed):
            for x, key in enumerate(row):
                picture[top + y][left + x] = key
    return picture


def bitmap(picture):
    """A 4-bit Windows bitmap file."""
    height, width = len(picture), len(picture[0])
    keys = list(PALETTE)
    stride = (width + 7) // 8 * 4
    pixels = bytearray()
    for row in reversed(picture):
        indices = [keys.index(key) for key in row] + [0] * (stride * 2 - width)
        pixels += bytes(high << 4 | low for high, low in zip(indices[::2], indices[1::2]))
    colours = b"".join(struct.pack("<4B", b, g, r, 0) for r, g, b in PALETTE.values()).ljust(64, b"\0")
    offset = 14 + 40 + len(colours)
    header = struct.pack("<2sIHHI", b"BM", offset + len(pixels), 0, 0, offset)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 4, 0, len(pixels), 2835, 2835, 16, 0)
    return header + info + colours + pixels


if __name__ == "__main__":
    pathlib.Path(__file__).with_name("preview_button.bmp").write_bytes(bitmap(draw()))
